#include "ui/screens/top_bar.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "ui/toolkit/text_lines.h"

namespace varkel {

namespace {

constexpr ColorRef transparent = Rgb(0xFF, 0x00, 0xFF);
constexpr int titleLeft = 14;
constexpr int longestTitle = 220;
constexpr int gap = 20;
constexpr int indicatorTop = 6;
constexpr int signalLeft = 672;
constexpr int dataLeft = 622;
constexpr int newMessageLeft = 572;
constexpr int missedCallLeft = 522;
constexpr int cancelLeft = 586;
constexpr int regular = 400;

constexpr const char* signalTexts[] = {"IDS_NOSIGNALSTR",   "IDS_LOWERSIGNALSTR",  "IDS_LOWSIGNALSTR",
                                       "IDS_GOODSIGNALSTR", "IDS_BETTERSIGNALSTR", "IDS_BESTSIGNALSTR"};

const char* StepKey(OpenStep step) {
    switch (step) {
        case OpenStep::PowerOn: return "IDS_STEP_POWERON";
        case OpenStep::OpenLink: return "IDS_STEP_OPENLINK";
        case OpenStep::AwaitModule: return "IDS_STEP_AWAITMODULE";
        case OpenStep::AwaitSim: return "IDS_STEP_AWAITSIM";
        case OpenStep::SearchNetwork: return "IDS_STEP_SEARCHNETWORK";
        case OpenStep::Initialise: return "IDS_STEP_INITIALISE";
    }
    return "";
}

std::string Clock(Ticks elapsed) {
    char text[16];
    const unsigned seconds = elapsed / 1000;
    std::snprintf(text, sizeof text, "%02u:%02u", seconds / 60, seconds % 60);
    return text;
}

}  // namespace

TopBar::TopBar(Dialog& owner, const ScreenContext& context) : m_owner(owner), m_context(context) {}

std::string TopBar::Text(const char* key) const {
    return DispRightToLeft(m_context.desktop.Texts().LoadString(key));
}

TopBar::Picture TopBar::Indicator(const char* name) const {
    const std::string path = std::string("\\ResidentFlash2\\bin\\Gprs\\Signal\\") + name + ".bmp";
    return m_context.desktop.GetGraphics().LoadBitmap(path);
}

void TopBar::Load() {
    const Language& texts = m_context.desktop.Texts();
    m_title = DispRightToLeft(texts.BeginLoadString("Total_Title").LoadString("IDS_3G"));
    for (int level = 0; level < 6; ++level)
        m_signals[level] = Indicator(("SignalLevel" + std::to_string(level)).c_str());
    m_data[0] = Indicator("DataClosed");
    m_data[1] = Indicator("DataDialling");
    m_data[2] = Indicator("DataOpen");
    m_newMessage = Indicator("NewMessage");
    m_missedCall = Indicator("MissedCall");
    m_owner.Invalidate(place);
}

void TopBar::SetStatusText(std::string text) {
    // What opening says ends with it.
    if (text.empty()) m_step.reset();
    m_status = std::move(text);
    Update();
}

void TopBar::ShowStatusLine(bool show) {
    m_showStatus = show;
    m_owner.Invalidate(place);
}

void TopBar::ShowOpenStep(OpenStep step, Ticks limit) {
    m_step = Step{step, m_context.platform.runtime.GetTickCount(), limit};
    m_owner.Invalidate(place);
}

void TopBar::SetSignalLevel(int level) {
    m_level = std::clamp(level, 0, 5);
    m_owner.Invalidate(place);
}

void TopBar::SetNews(int unread, int missed) {
    m_unread = unread;
    m_missed = missed;
    m_owner.Invalidate(place);
}

void TopBar::Update() {
    if (m_step && !m_context.session.Opening()) m_step.reset();
    const bool inCall = m_context.session.State().MainScreenMode == ScreenMode::InCall;
    if (!inCall) m_callStart.reset();
    if (inCall && !m_callStart) m_callStart = m_context.platform.runtime.GetTickCount();
    m_owner.Invalidate(place);
}

CancelOffer TopBar::Offer() const {
    if (m_context.session.Calls().Dialling()) return CancelOffer::DialledCall;
    return m_step && m_context.session.Opening() ? CancelOffer::ModuleStart : CancelOffer::None;
}

std::string TopBar::StepLine() const {
    const std::string text = Text(StepKey(m_step->step));
    if (m_step->limit == 0) return text;
    const Ticks elapsed = TicksSince(m_context.platform.runtime.GetTickCount(), m_step->start);
    const Ticks left = elapsed < m_step->limit ? m_step->limit - elapsed : 0;
    return text + ", " + WithNumber(Text("IDS_SECONDS_LEFT"), static_cast<int>((left + 999) / 1000));
}

std::string TopBar::CallLine() const {
    const std::string party = m_context.session.Calls().OtherParty();
    const Ticks elapsed = TicksSince(m_context.platform.runtime.GetTickCount(), *m_callStart);
    return (party.empty() ? Text("IDS_IN_CALL") : party) + "  " + Clock(elapsed);
}

std::string TopBar::StatusLine() const {
    if (m_step) return StepLine();
    if (m_callStart) return CallLine();
    if (!m_status.empty()) return m_status;
    const bool closed = m_context.session.State().MainScreenMode == ScreenMode::Closed;
    return Text(closed ? "IDS_MODULE_OFF" : signalTexts[m_level]);
}

void TopBar::Draw(Canvas& canvas) const {
    const int statusLeft = DrawTitle(canvas) + gap;
    DrawIndicators(canvas);
    if (!m_showStatus) return;
    const Rect line{statusLeft, 0, StatusRight() - gap - statusLeft, place.height};
    const TextFormat format =
        TextFormat::Center | TextFormat::VCenter | TextFormat::SingleLine | TextFormat::EndEllipsis;
    const std::string text = StatusLine();
    Graphics& graphics = m_context.desktop.GetGraphics();
    LogFont font = StyleOf(TextRole::Secondary, m_owner.Colors()).font;
    font.weight = regular;
    font = FittingFont(graphics, text, font, {line.width, line.height}, false);
    canvas.DrawText(text, line, format, font, m_context.desktop.Colors().text);
}

// Where the first indicator stands, or the button that gives something up.
int TopBar::StatusRight() const {
    if (m_missed > 0) return missedCallLeft;
    if (Offer() != CancelOffer::None) return cancelLeft;
    return m_unread > 0 ? newMessageLeft : dataLeft;
}

int TopBar::DrawTitle(Canvas& canvas) const {
    TextStyle style = StyleOf(TextRole::Title, m_owner.Colors());
    Graphics& graphics = m_context.desktop.GetGraphics();
    style.font = FittingFont(graphics, m_title, style.font, {longestTitle, place.height}, false);
    const int width = std::min(graphics.MeasureText(m_title, style.font).width, longestTitle);
    const TextFormat format = TextFormat::VCenter | TextFormat::SingleLine | TextFormat::EndEllipsis;
    canvas.DrawText(m_title, {titleLeft, 0, width, place.height}, format, style.font, style.color);
    return titleLeft + width;
}

void TopBar::DrawIndicators(Canvas& canvas) const {
    if (m_missed > 0) DrawIndicator(canvas, m_missedCall, missedCallLeft);
    // The button that gives something up takes the place of the others.
    if (Offer() != CancelOffer::None) return;
    if (m_unread > 0) DrawIndicator(canvas, m_newMessage, newMessageLeft);
    const auto data = static_cast<std::size_t>(m_context.session.State().m_dataState.load());
    DrawIndicator(canvas, m_data[data], dataLeft);
    DrawIndicator(canvas, m_signals[m_level], signalLeft);
}

void TopBar::DrawIndicator(Canvas& canvas, const Picture& picture, int x) const {
    if (!picture) return;
    const Size size = picture->GetSize();
    canvas.TransparentImage(*picture, {x, indicatorTop, size.width, size.height}, transparent);
}

}  // namespace varkel
