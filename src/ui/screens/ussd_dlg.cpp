#include "ui/screens/ussd_dlg.h"

#include <algorithm>

#include "modem/at_values.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int titleId = 1100;
constexpr int stateId = 1101;
constexpr int replyId = 1102;
constexpr int pageUpId = 1103;
constexpr int pageDownId = 1104;

constexpr Rect messagePlace{24, 70, 564, 344};
constexpr int fontHeights[] = {32, 28, 24};

constexpr auto oneLine = TextFormat::Left | TextFormat::VCenter | TextFormat::SingleLine;
constexpr TextSpec texts[] = {
    {titleId, {14, 0, 772, 50}, "USSD", TextRole::Title, oneLine},
    {stateId, {24, 422, 564, 44}, "", TextRole::Secondary, oneLine},
};

constexpr ButtonSpec Page(int left, int id, std::string_view picture) {
    return {.id = id, .rect = {left, 394, 88, 80}, .picture = picture, .disabled = DisabledPicture::Dis};
}

constexpr ButtonSpec buttons[] = {
    form::Action(0, replyId, "Reply", DisabledPicture::Sel, "IDS_REPLY"),
    form::Action(1, idOk, "Return", DisabledPicture::Sel, "IDS_BACK"),
    Page(612, pageUpId, "\\ResidentFlash2\\bin\\Gprs\\Other\\PageUp"),
    Page(704, pageDownId, "\\ResidentFlash2\\bin\\Gprs\\Other\\PageDown"),
};

constexpr DialogSpec spec{
    .directory = "\\ResidentFlash2\\bin\\Gprs\\Ussd\\",
    .background = "UssdBack",
    .texts = texts,
    .buttons = buttons,
    .escapeClicks = idOk,
};

std::optional<WarnCode> CheckReply(std::string_view text) {
    if (text.empty()) return WarnCode::NoNumber;
    UssdString reply;
    const ValueFault fault = UssdString::Parse(text, reply);
    if (fault == ValueFault::None) return std::nullopt;
    return static_cast<WarnCode>(fault);
}

}  // namespace

CUssdDlg::CUssdDlg(ScreenContext& context) : Dialog(context.desktop, spec), m_context(context) {
    OnClick(replyId, [this] { Reply(); });
    OnClick(idOk, [this] { Leave(); });
    OnClick(pageUpId, [this] { TurnPage(-1); });
    OnClick(pageDownId, [this] { TurnPage(1); });
}

void CUssdDlg::OnInitDialog() {
    ShowMessage();
}

void CUssdDlg::OnDestroy() {
    m_reply.reset();
}

void CUssdDlg::SetText(std::string_view text, bool replyExpected) {
    // What was said last stays to be read.
    if (!text.empty() || !IsOpen()) m_text = text;
    m_replyExpected = replyExpected;
    if (!IsOpen()) return;
    // A reply that is being typed was to something else.
    if (m_reply) m_reply->EndDialog(DialogResult::Cancel);
    ShowMessage();
}

void CUssdDlg::OnSessionChanged() {
    if (IsOpen()) ShowState();
}

// As large as a page has room for; what is longer still is read page by page.
void CUssdDlg::ShowMessage() {
    Graphics& graphics = GetDesktop().GetGraphics();
    for (const int height : fontHeights) {
        m_font = DialogFont(height);
        m_lineHeight = std::max(1, graphics.MeasureText("Ag", m_font).height);
        m_lines = CutIntoLines(graphics, m_text, m_font, messagePlace.width);
        if (static_cast<int>(m_lines.size()) <= LinesOfPage()) break;
    }
    m_firstLine = 0;
    ShowState();
    TurnPage(0);
}

void CUssdDlg::ShowState() {
    const bool waits = m_context.session.Calls().AwaitsUssd();
    const char* const key = waits             ? "IDS_WAIT_NETWORK"
                            : m_replyExpected ? "IDS_USSD_EXPECTS"
                                              : "IDS_USSD_ENDED";
    Get<StaticText>(stateId).SetWindowText(LoadText(key));
    Get<CSkinButton>(replyId).ShowWindow(!waits);
}

int CUssdDlg::LinesOfPage() const {
    return messagePlace.height / m_lineHeight;
}

void CUssdDlg::TurnPage(int by) {
    const int count = static_cast<int>(m_lines.size());
    const int page = LinesOfPage();
    const int next = m_firstLine + by * page;
    if (next >= 0 && next < count) m_firstLine = next;
    auto& up = Get<CSkinButton>(pageUpId);
    auto& down = Get<CSkinButton>(pageDownId);
    for (CSkinButton* const button : {&up, &down})
        button->ShowWindow(count > page);
    up.EnableWindow(m_firstLine > 0);
    down.EnableWindow(m_firstLine + page < count);
    Invalidate();
}

void CUssdDlg::OnPaint(Canvas& canvas) {
    const auto format =
        (GetDesktop().ReadsRightToLeft() ? TextFormat::Right : TextFormat::Left) | TextFormat::SingleLine;
    Rect place{messagePlace.x, messagePlace.y, messagePlace.width, m_lineHeight};
    const int end = std::min(m_firstLine + LinesOfPage(), static_cast<int>(m_lines.size()));
    for (int line = m_firstLine; line < end; ++line) {
        const TextLine& part = m_lines[static_cast<std::size_t>(line)];
        canvas.DrawText(std::string_view(m_text).substr(part.begin, part.end - part.begin), place, format,
                        m_font, Colors().subMenu);
        place.y += m_lineHeight;
    }
}

void CUssdDlg::Reply() {
    const CodeRequest request{
        .title = "",
        .firstLabel = "",
        .secondLabel = "",
        .check = [](std::string_view text, std::string_view) { return CheckReply(text); },
        .cancelled = nullptr,
    };
    m_reply = std::make_unique<CNumberDlg>(m_context, request, NumberMode::UssdReply, m_text);
    // Not modal, so that a call that hides this screen need not wait for the user.
    m_reply->Show([this](DialogResult result) {
        const auto reply = std::move(m_reply);
        if (result == DialogResult::Ok) m_context.session.Calls().AnswerUssd(reply->Entry().first);
        if (IsOpen()) ShowState();
    });
}

void CUssdDlg::Leave() {
    m_context.session.Calls().LeaveUssd();
    EndDialog(DialogResult::Ok);
}

}  // namespace varkel
