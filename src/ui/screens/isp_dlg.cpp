#include "ui/screens/isp_dlg.h"

#include <utility>

#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {

namespace {

constexpr int titleId = 1100;
constexpr int stateId = 1121;

struct FieldSpec {
    std::string IspText::*text;
    std::string_view label;
    EditInput input = EditInput::Text;
    std::size_t maxUnits = 127;
    bool password = false;
};
constexpr FieldSpec fields[] = {
    {&IspText::name, "IDS_ISP_NAME"},
    {&IspText::accessPoint, "IDS_ISP_APN", EditInput::Text, 100},
    {&IspText::operatorCode, "IDS_ISP_CODE", EditInput::Digits, 15},
    {&IspText::userName, "IDS_ISP_USER"},
    {&IspText::password, "IDS_ISP_PASSWORD", EditInput::Text, 127, true},
    {&IspText::dialNumber, "IDS_ISP_DIAL", EditInput::PhoneNumber},
};
constexpr int fieldCount = static_cast<int>(std::size(fields));

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr int Top(int field) {
    return 66 + field * 67;
}
constexpr TextSpec Label(int field) {
    return {
        1130 + field,      {16, Top(field) + 8, 232, 47}, fields[field].label, TextRole::Secondary, oneLine,
        TextGround::Static};
}
constexpr TextSpec texts[] = {
    {titleId, {14, 0, 500, 50}, "", TextRole::Title, oneLine},
    {stateId, {520, 0, 200, 50}, "", TextRole::Secondary, oneLine},
    Label(0),
    Label(1),
    Label(2),
    Label(3),
    Label(4),
    Label(5),
};
constexpr EditSpec Field(int field) {
    return {.id = CDlgISP::firstFieldId + field,
            .rect = {252, Top(field), 340, 63},
            .input = fields[field].input,
            .maxUnits = fields[field].maxUnits,
            .password = fields[field].password,
            .height = 28};
}
constexpr EditSpec edits[] = {Field(0), Field(1), Field(2), Field(3), Field(4), Field(5)};
static_assert(std::size(edits) == fieldCount);

constexpr ButtonSpec buttons[] = {
    form::Save(CDlgISP::saveId),
    form::Action(1, CDlgISP::deleteId, "Delete", DisabledPicture::Disable, "IDS_DELETE"),
    form::Exit(CDlgISP::exitId),
};

constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .returnClicks = noId,
    .escapeClicks = CDlgISP::exitId,
};

bool Same(const IspText& a, const IspText& b) {
    for (const FieldSpec& field : fields) {
        if (a.*field.text != b.*field.text) return false;
    }
    return true;
}

WarnCode WarningOf(StoreResult result) {
    switch (result) {
        case StoreResult::VolumeFull: return WarnCode::NandFull;
        case StoreResult::Unreadable: return WarnCode::FileDestroyed;
        default: return WarnCode::AddFail;
    }
}

}  // namespace

CDlgISP::CDlgISP(ScreenContext& context)
    : Dialog(context.desktop, spec), m_context(context), m_self(std::make_shared<CDlgISP*>(this)) {
    OnClick(saveId, [this] { Save(); });
    OnClick(deleteId, [this] { Delete(); });
    OnClick(exitId, [this] { Leave(); });
}

CDlgISP::~CDlgISP() {
    *m_self = nullptr;
}

void CDlgISP::SetOperator(const ISP_Struct& seen, std::size_t index) {
    m_seen = seen;
    m_index = index;
}

void CDlgISP::OnInitDialog() {
    Get<StaticText>(titleId).SetWindowText(LoadText(m_seen ? "IDS_ISP_EDIT" : "IDS_ISP_NEW"));
    Get<CSkinButton>(deleteId).ShowWindow(m_seen.has_value());
    IspText text;
    if (m_seen) text = IspTextOf(m_context.platform.codePage, *m_seen);
    for (int i = 0; i < fieldCount; ++i)
        Get<EditField>(firstFieldId + i).SetWindowText(text.*fields[i].text);
    m_before = Typed();
}

IspText CDlgISP::Typed() const {
    IspText text;
    for (int i = 0; i < fieldCount; ++i)
        text.*fields[i].text = Get<EditField>(firstFieldId + i).GetWindowText();
    return text;
}

void CDlgISP::Save() {
    ISP_Struct isp;
    if (const auto fault = MakeIsp(m_context.platform.codePage, Typed(), isp)) {
        Warn(GetDesktop(), fault->warning);
        // The finger is where the fault is.
        for (int i = 0; i < fieldCount && IsOpen(); ++i) {
            if (fields[i].text == fault->text) SetFocus(&Get<EditField>(firstFieldId + i));
        }
        return;
    }
    const auto done = [self = m_self, isp](StoreResult result) {
        if (*self) (*self)->OnWritten(result, isp);
    };
    Wait(true);
    if (m_seen) {
        m_context.session.Choices().ChangeOperator(*m_seen, m_index, isp, done);
    } else {
        m_context.session.Choices().AddOperator(isp, done);
    }
}

void CDlgISP::Delete() {
    if (Warn(GetDesktop(), WarnCode::DeletePrompt, WarnButtonMode::OkCancel) != DialogResult::Ok) return;
    if (!IsOpen()) return;
    Wait(true);
    m_context.session.Choices().DeleteOperator(*m_seen, m_index, [self = m_self](StoreResult result) {
        // What is gone already is deleted, too.
        const bool gone = result == StoreResult::NotFound;
        if (*self) (*self)->OnWritten(gone ? StoreResult::Done : result, std::nullopt);
    });
}

void CDlgISP::Wait(bool wait) {
    Get<StaticText>(stateId).SetWindowText(wait ? LoadText("IDS_SAVING") : "");
    for (const int id : {saveId, deleteId, exitId})
        Get<CSkinButton>(id).EnableWindow(!wait);
}

void CDlgISP::OnWritten(StoreResult result, const std::optional<ISP_Struct>& written) {
    if (!IsOpen()) return;
    Wait(false);
    if (result == StoreResult::Done) {
        m_saved = written;
        EndDialog(DialogResult::Ok);
        return;
    }
    const bool deleting = !written;
    Warn(GetDesktop(), deleting ? WarnCode::DeleteFail : WarningOf(result));
}

void CDlgISP::Leave() {
    if (!Same(Typed(), m_before)) {
        if (Warn(GetDesktop(), WarnCode::WritePrompt, WarnButtonMode::OkCancel) == DialogResult::Ok) {
            if (IsOpen()) Save();
            return;
        }
    }
    EndDialog(DialogResult::Cancel);
}

}  // namespace varkel
