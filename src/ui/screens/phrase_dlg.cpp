#include "ui/screens/phrase_dlg.h"

#include "ui/toolkit/radio_group.h"

namespace varkel {

namespace {

constexpr int phrasesId = 1100;

constexpr std::string_view phrases[] = {"IDS_PHRASESTR1", "IDS_PHRASESTR2", "IDS_PHRASESTR3",
                                        "IDS_PHRASESTR4", "IDS_PHRASESTR5", "IDS_PHRASESTR6",
                                        "IDS_PHRASESTR7", "IDS_PHRASESTR8"};
constexpr RadioSpec radios[] = {
    {.id = phrasesId,
     .rect = {8, 58, 792, 336},
     .item = {396, 84},
     .picture = "PhraseRow",
     .captions = phrases,
     .look = RadioLook::Tab,
     .role = TextRole::Button},
};
constexpr TextSpec texts[] = {
    {0, {14, 0, 772, 50}, "IDS_PHRASES", TextRole::Title},
};
constexpr ButtonSpec buttons[] = {
    {.id = idCancel, .rect = {428, 396, 180, 80}, .picture = "Quit"},
    {.id = idOk, .rect = {612, 396, 180, 80}, .picture = "Ok"},
};
constexpr DialogSpec spec{
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\",
    .background = "Phrase",
    .texts = texts,
    .buttons = buttons,
    .radios = radios,
};

}  // namespace

CPhraseDlg::CPhraseDlg(Desktop& desktop) : Dialog(desktop, spec) {
    OnClick(idOk, [this] {
        m_phrase = LoadText(phrases[Get<RadioGroup>(phrasesId).Selected()]);
        EndDialog(DialogResult::Ok);
    });
}

}  // namespace varkel
