#include "ui/screens/phone_book_set.h"

#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/radio_group.h"

namespace varkel {

namespace {

constexpr int showId = 1040;
constexpr int saveToId = 1041;
constexpr int exitId = 1075;

// In the order of PhoneBooks and PhoneBookKind.
constexpr std::string_view shown[] = {"IDS_ALL", "IDS_LOCAL", "IDS_SIM"};
constexpr std::string_view books[] = {"IDS_LOCAL", "IDS_SIM"};
constexpr std::string_view radio = "\\ResidentFlash2\\bin\\GPRS\\PanelRadio1";

constexpr TextSpec Heading(int id, int left, std::string_view caption) {
    return {id,
            {left, 72, 196, 56},
            caption,
            TextRole::Secondary,
            TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine};
}
constexpr RadioSpec Choice(int id, int left, std::span<const std::string_view> items) {
    const int height = 66 * static_cast<int>(items.size());
    return {id, {left, 132, 200, height}, {200, 66}, radio, items, RadioLook::Tab, TextRole::Button};
}
constexpr TextSpec texts[] = {
    {1000, {14, 0, 700, 50}, "IDS_ADDRESSLISTMODE", TextRole::Title},
    Heading(1001, 72, "IDS_SHOW"),
    Heading(1002, 344, "IDS_SAVE_TO"),
};
constexpr RadioSpec radios[] = {Choice(showId, 72, shown), Choice(saveToId, 344, books)};
constexpr ButtonSpec buttons[] = {form::Exit(exitId)};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .radios = radios,
    .returnClicks = exitId,
    .escapeClicks = exitId,
};

}  // namespace

CPhoneBookSet::CPhoneBookSet(ScreenContext& context) : Dialog(context.desktop, spec) {
    OnClick(showId, [this] {
        GetDesktop().GetSettings().WriteCardDisp(PhoneBooks(Get<RadioGroup>(showId).Selected()));
    });
    OnClick(saveToId, [this] {
        GetDesktop().GetSettings().WriteCardSaveTo(PhoneBookKind(Get<RadioGroup>(saveToId).Selected()));
    });
    OnClick(exitId, [this] { EndDialog(DialogResult::Ok); });
}

void CPhoneBookSet::OnInitDialog() {
    Settings& settings = GetDesktop().GetSettings();
    Get<RadioGroup>(showId).Select(static_cast<int>(settings.ReadCardDisp()));
    Get<RadioGroup>(saveToId).Select(static_cast<int>(settings.ReadCardSaveTo()));
}

}  // namespace varkel
