#include "ui/screens/call_in_dlg.h"

#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int acceptId = 1008;
constexpr int rejectId = 1009;
constexpr int callerId = 1100;
constexpr int nameId = 1101;
constexpr int numberId = 1102;
constexpr int acceptTextId = 1103;
constexpr int rejectTextId = 1104;
constexpr int waitId = 1105;
constexpr int deafTimer = 1;
constexpr int callerTimer = 2;
constexpr int offerTimer = 3;

constexpr auto centred = TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine;

// The caller's text has its place and its size; who calls stands above and below it once more, as large as it
// is read at a glance.
constexpr TextSpec texts[] = {
    {callerId, {0, 0, 800, 160}, "", TextRole::Caller, centred},
    {nameId, {24, 8, 752, 58}, "", TextRole::CallerName, centred},
    {numberId, {24, 98, 752, 46}, "", TextRole::Body, centred},
    {acceptTextId, {93, 430, 250, 42}, "IDS_ACCEPT", TextRole::Body, centred},
    {rejectTextId, {457, 432, 250, 42}, "IDS_REJECT", TextRole::Body, centred},
    {waitId, {24, 432, 752, 40}, "", TextRole::Body, centred},
};

constexpr ButtonSpec buttons[] = {
    {acceptId, {160, 323, 116, 104}, "Accept"},
    {rejectId, {524, 325, 116, 104}, "Reject"},
};

constexpr DialogSpec spec{
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Other\\",
    .background = "CallInBack",
    .texts = texts,
    .buttons = buttons,
    // A key that was meant for another screen accepts no call.
    .returnClicks = noId,
    .escapeClicks = rejectId,
    .layer = DialogLayer::AboveAll,
};

}  // namespace

CCallInDlg::CCallInDlg(ScreenContext& context) : Dialog(context.desktop, spec), m_session(context.session) {
    OnClick(acceptId, [this] { Accept(); });
    OnClick(rejectId, [this] { Reject(); });
}

void CCallInDlg::Show() {
    if (IsWindowVisible()) {
        Offer();
        return;
    }
    // The screen of the call before may still be leaving.
    m_again = IsOpen();
    Dialog::Show([this](DialogResult) {
        if (m_again) Show();
    });
}

void CCallInDlg::OnInitDialog() {
    Offer();
    ShowCaller();
    EnableWindow(false);
    SetTimer(deafTimer, deafTime, [this] {
        KillTimer(deafTimer);
        EnableWindow(true);
    });
    SetTimer(callerTimer, callerTime, [this] {
        KillTimer(callerTimer);
        if (m_caller.empty()) Get<StaticText>(nameId).SetWindowText(LoadText("IDS_UNKNOWN_CALLER"));
    });
}

void CCallInDlg::SetCallerText(std::string_view text) {
    m_caller = text;
    if (IsOpen()) ShowCaller();
}

void CCallInDlg::ShowCaller() {
    const std::string number = m_session.Calls().CallerNumber();
    std::string name = m_session.Calls().OtherParty();
    if (name.empty() && !m_caller.empty()) name = LoadText("IDS_UNKNOWN_CALLER");
    Get<StaticText>(callerId).SetWindowText(m_caller);
    Get<StaticText>(nameId).SetWindowText(name);
    Get<StaticText>(numberId).SetWindowText(number == name ? "" : number);
}

// Both buttons, with their captions.
void CCallInDlg::Offer() {
    KillTimer(offerTimer);
    for (const int id : {acceptId, rejectId})
        Get<CSkinButton>(id).EnableWindow(true);
    for (const int id : {acceptTextId, rejectTextId})
        Get<StaticText>(id).ShowWindow(true);
    Get<StaticText>(waitId).SetWindowText("");
}

// A request that nothing follows can be made again.
void CCallInDlg::Await(std::string_view key) {
    Get<CSkinButton>(acceptId).EnableWindow(false);
    for (const int id : {acceptTextId, rejectTextId})
        Get<StaticText>(id).ShowWindow(false);
    Get<StaticText>(waitId).SetWindowText(LoadText(key));
    SetTimer(offerTimer, longestWait, [this] { Offer(); });
}

void CCallInDlg::Accept() {
    Await("IDS_WAIT_NETWORK");
    m_session.Calls().Answer();
}

void CCallInDlg::Reject() {
    Await("IDS_ENDING_CALL");
    Get<CSkinButton>(rejectId).EnableWindow(false);
    m_session.Calls().Reject();
}

}  // namespace varkel
