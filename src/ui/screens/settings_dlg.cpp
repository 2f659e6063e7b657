#include "ui/screens/settings_dlg.h"

#include <string>

#include "session/signal_watch.h"
#include "ui/screens/center_dlg.h"
#include "ui/screens/network_mode.h"
#include "ui/screens/network_set_dlg.h"
#include "ui/toolkit/check_box.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int refreshTimer = 1;
constexpr int volumeTimer = 2;
constexpr int callTimer = 3;
constexpr int answerTimer = 4;
constexpr Ticks refreshPeriod = 10'000;
constexpr Ticks volumeDelay = 300;
constexpr Ticks callDelay = 50;
constexpr Ticks answerTime = 100;

constexpr int signalTextId = 1105;

constexpr Rect dataRow{24, 341, 568, 63};
constexpr Rect autoOpenPlace{24, 406, 568, 63};
constexpr Rect autoOpenInCall{24, 276, 568, 63};
constexpr Rect volumePlace{276, 66, 220, 72};
constexpr Rect dataPlace{622, 6, 48, 38};
constexpr Rect signalPlace{672, 6, 52, 38};
constexpr ColorRef transparent = Rgb(0xFF, 0x00, 0xFF);

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr auto inColumn = TextFormat::Center | TextFormat::VCenter | TextFormat::WordBreak;
constexpr auto atRight = TextFormat::Right | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {
    {1110, {14, 0, 590, 50}, "IDS_SETMODE", TextRole::Title, oneLine},
    {1111, {24, 62, 148, 80}, "IDS_SOUNDSET", TextRole::Body, oneLine},
    {1112, {24, 146, 240, 63}, "IDS_CALLRING", TextRole::Body, oneLine},
    {1113, {24, 211, 240, 63}, "IDS_NOTERING", TextRole::Body, oneLine},
    {.id = CSettingsDlg::dataTextId,
     .rect = {376, 341, 216, 63},
     .role = TextRole::Secondary,
     .format = atRight,
     .mirroredIn = dataRow},
    {CSettingsDlg::modeTextId, {612, 286, 180, 68}, "", TextRole::Secondary, inColumn},
    {signalTextId, {612, 364, 180, 68}, "", TextRole::Secondary, inColumn},
};

constexpr ButtonSpec Volume(int left, int id, std::string_view picture) {
    return {.id = id, .rect = {left, 62, 88, 80}, .picture = picture, .disabled = DisabledPicture::Disable};
}

constexpr ButtonSpec buttons[] = {
    Volume(180, CSettingsDlg::volumeDownId, "SoundSub"),
    Volume(504, CSettingsDlg::volumeUpId, "SoundAdd"),
    {.id = CSettingsDlg::callRingId, .rect = {276, 146, 316, 62}},
    {.id = CSettingsDlg::noteRingId, .rect = {276, 211, 316, 62}},
    form::Action(0, CSettingsDlg::centerId, "SmsSet", DisabledPicture::Disable, "IDS_SERVERNUM"),
    form::Action(1, CSettingsDlg::networkId, "NetworkSet", DisabledPicture::Disable, "IDS_NETWORK_MODE"),
    form::Exit(CSettingsDlg::exitId),
};

constexpr int modemOn = 0;
constexpr int modemOff = 1;
constexpr std::string_view modemCaptions[] = {"IDS_3GTURNONBTN", "IDS_3GTURNOFFBTN"};
constexpr RadioSpec radios[] = {
    {.id = CSettingsDlg::modemId,
     .rect = {24, 276, 568, 63},
     .item = {284, 63},
     .picture = "\\ResidentFlash2\\bin\\GPRS\\Radio",
     .captions = modemCaptions},
};
constexpr std::string_view checkPicture = "\\ResidentFlash2\\bin\\Gprs\\Check";
constexpr CheckSpec checks[] = {
    {.id = CSettingsDlg::dataId,
     .rect = {24, 341, 344, 63},
     .picture = checkPicture,
     .caption = "IDS_OPEN3GNET",
     .mirroredIn = dataRow},
    {.id = CSettingsDlg::autoOpenId,
     .rect = autoOpenPlace,
     .picture = checkPicture,
     .caption = "IDS_SET_AUTO_OPEN3G"},
};

constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .radios = radios,
    .checks = checks,
    .returnClicks = noId,
    .escapeClicks = CSettingsDlg::exitId,
    .animated = true,
};

struct DataLook {
    const char* key;
    const char* picture;
};
constexpr DataLook dataLooks[] = {
    {"IDS_DATA_OFF", "DataClosed"},
    {"IDS_DATA_DIALLING", "DataDialling"},
    {"IDS_DATA_CONNECTED", "DataOpen"},
};
constexpr const char* signalKeys[] = {"IDS_NOSIGNALSTR",   "IDS_LOWERSIGNALSTR",  "IDS_LOWSIGNALSTR",
                                      "IDS_GOODSIGNALSTR", "IDS_BETTERSIGNALSTR", "IDS_BESTSIGNALSTR"};

const DataLook& LookOf(const SessionState& state) {
    return dataLooks[static_cast<int>(state.m_dataState.load())];
}

int SignalLevelOf(const SessionState& state) {
    return IconLevel(SignalValue(state.m_szCsq.Get().View()));
}

}  // namespace

CSettingsDlg::CSettingsDlg(ScreenContext& context) : Dialog(context.desktop, spec), m_context(context) {
    OnClick(volumeUpId, [this] { SetVolume(m_context.session.Choices().Volume() + 1); });
    OnClick(volumeDownId, [this] { SetVolume(m_context.session.Choices().Volume() - 1); });
    OnClick(callRingId, [this] { NextRing(RingKind::Call); });
    OnClick(noteRingId, [this] { NextRing(RingKind::Message); });
    OnClick(centerId, [this] { CCenterDlg(m_context).DoModal(); });
    OnClick(networkId, [this] {
        if (CDlgNetworkSet(m_context).DoModal() == DialogResult::Ok && IsOpen()) Refresh();
    });
    OnClick(modemId, [this] { ChooseModem(); });
    OnClick(dataId, [this] { m_dataChosen = true; });
    OnClick(exitId, [this] { Close(); });
}

void CSettingsDlg::OnInitDialog() {
    m_requests = {};
    m_modemChosen = m_dataChosen = m_ringHeard = false;
    m_volume = m_context.session.Choices().Volume();
    ShowRing(RingKind::Call);
    ShowRing(RingKind::Message);
    Get<CheckBox>(autoOpenId).SetCheck(m_context.session.GetSettings().ReadAutoOpenFlag() == 1);
    Refresh();
    SetTimer(refreshTimer, refreshPeriod, [this] { AskSignal(); });
    SetTimer(volumeTimer, volumeDelay, [this] {
        KillTimer(volumeTimer);
        AskSignal();
        m_context.session.Choices().SendVolume();
    });
    SetTimer(callTimer, callDelay, [this] {
        KillTimer(callTimer);
        Refresh();
    });
}

void CSettingsDlg::OnDestroy() {
    if (m_ringHeard && !m_context.session.State().m_bCallActive) m_context.platform.sound.PlaySound({});
}

void CSettingsDlg::OnPaint(Canvas& canvas) {
    const auto show = [&](const std::string& name, const Rect& at) {
        if (const Bitmap* const picture = LoadPicture(name))
            canvas.TransparentImage(*picture, at, transparent);
    };
    const std::string directory = "\\ResidentFlash2\\bin\\Gprs\\Signal\\";
    const SessionState& state = m_context.session.State();
    show(directory + LookOf(state).picture, dataPlace);
    show(directory + "SignalLevel" + std::to_string(SignalLevelOf(state)), signalPlace);
    show("VolumeLevel" + std::to_string(m_volume), volumePlace);
}

void CSettingsDlg::OnSessionChanged() {
    if (IsOpen()) Refresh();
}

// It counts as on while it is being switched on, too.
bool CSettingsDlg::ModemOn() const {
    CVarkelDlg& session = m_context.session;
    return session.State().m_bModuleOpen || session.Opening();
}

void CSettingsDlg::SetVolume(int level) {
    m_volume = m_context.session.Choices().SetVolume(level);
    Invalidate(volumePlace);
}

void CSettingsDlg::NextRing(RingKind kind) {
    const int choice = m_context.session.GetSettings().ReadRing(kind);
    m_context.session.Choices().SetRing(kind, (choice + 1) % ringChoices);
    m_ringHeard = true;
    ShowRing(kind);
}

void CSettingsDlg::ShowRing(RingKind kind) {
    const int choice = m_context.session.GetSettings().ReadRing(kind);
    std::string text = LoadText(choice == silentRing ? "IDS_RING_SILENT" : "IDS_RING_TONE");
    if (const std::size_t place = text.find("%d"); place != std::string::npos)
        text.replace(place, 2, std::to_string(choice + 1));
    Get<CSkinButton>(kind == RingKind::Call ? callRingId : noteRingId).SetWindowText(text);
}

// The data link goes with the modem, until the user says otherwise.
void CSettingsDlg::ChooseModem() {
    m_modemChosen = m_dataChosen = true;
    Get<CheckBox>(dataId).SetCheck(Get<RadioGroup>(modemId).Selected() == modemOn);
    Refresh();
}

void CSettingsDlg::Refresh() {
    CVarkelDlg& session = m_context.session;
    const bool inCall = session.State().m_bCallActive;
    // The call has taken from the user what he had chosen.
    if (inCall) m_modemChosen = m_dataChosen = false;
    auto& modem = Get<RadioGroup>(modemId);
    auto& data = Get<CheckBox>(dataId);
    auto& dataText = Get<StaticText>(dataTextId);
    if (!m_modemChosen) modem.Select(ModemOn() ? modemOn : modemOff);
    if (!m_dataChosen) data.SetCheck(session.Data().Exists());
    data.EnableWindow(modem.Selected() == modemOn);
    modem.ShowWindow(!inCall);
    data.ShowWindow(!inCall);
    dataText.ShowWindow(!inCall);
    // What stays closes the gap.
    Get<CheckBox>(autoOpenId).MoveWindow(inCall ? autoOpenInCall : autoOpenPlace);
    dataText.SetWindowText(LoadText(LookOf(session.State()).key));
    Get<StaticText>(modeTextId).SetWindowText(LoadText(NetworkModeKey(session.Choices().NetworkMode())));
    const bool closed = session.State().MainScreenMode == ScreenMode::Closed;
    Get<StaticText>(signalTextId)
        .SetWindowText(LoadText(closed ? "IDS_MODULE_OFF" : signalKeys[SignalLevelOf(session.State())]));
    // A closed module would not hear of another service centre.
    Get<CSkinButton>(centerId).EnableWindow(!inCall && !closed);
    Get<CSkinButton>(networkId).EnableWindow(!inCall);
    Invalidate(dataPlace);
    Invalidate(signalPlace);
}

void CSettingsDlg::AskSignal() {
    m_context.session.Choices().RefreshSignal();
    SetTimer(answerTimer, answerTime, [this] {
        KillTimer(answerTimer);
        Refresh();
    });
}

void CSettingsDlg::Close() {
    Refresh();
    m_requests = {};
    const bool wasOn = ModemOn();
    const bool isOn = Get<RadioGroup>(modemId).Selected() == modemOn;
    m_requests.turnOn = !wasOn && isOn;
    m_requests.turnOff = wasOn && !isOn;
    const bool wasOpen = m_context.session.Data().Exists();
    const bool isOpen = Get<CheckBox>(dataId).IsChecked();
    m_requests.closeData = wasOpen && !isOpen;
    m_requests.openData = !wasOpen && isOpen;
    m_context.session.GetSettings().WriteAutoOpenFlag(Get<CheckBox>(autoOpenId).IsChecked() ? 1 : 0);
    EndDialog(DialogResult::Ok);
}

void ShowSettings(ScreenContext& context) {
    CSettingsDlg dialog(context);
    dialog.DoModal();
    context.session.CarryOut(dialog.Requests());
}

}  // namespace varkel
