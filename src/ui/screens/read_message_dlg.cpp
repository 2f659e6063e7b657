#include "ui/screens/read_message_dlg.h"

#include "ui/screens/message_text.h"
#include "ui/screens/write_message_dlg.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/form_parts.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"

namespace varkel {

namespace {

constexpr int replyId = 1024;
constexpr int textId = 1023;
constexpr int exitId = 1075;
constexpr int backId = 1100;
constexpr int titleId = 1101;
constexpr int partyLabelId = 1102;
constexpr int partyId = 1103;
constexpr int timeId = 1104;

constexpr TextSpec Labelled(int id, const Rect& rect, std::string_view caption) {
    TextSpec label = form::Label(rect, caption);
    label.id = id;
    return label;
}

constexpr TextSpec texts[] = {
    {titleId, {14, 0, 706, 50}, "IDS_READ_SMS", TextRole::Title},
    Labelled(partyLabelId, {24, 70, 150, 44}, ""),
    {partyId, {186, 70, 402, 44}, "", TextRole::Body},
    form::Label({24, 122, 150, 44}, "IDS_TIMESTR"),
    {timeId, {186, 122, 402, 44}, "", TextRole::Body},
    form::Label({24, 174, 150, 44}, "IDS_NOTECONTENT"),
};
constexpr EditSpec edits[] = {
    {.id = textId, .rect = {24, 226, 564, 236}, .maxUnits = 160, .multiLine = true, .readOnly = true},
};
constexpr ButtonSpec buttons[] = {
    form::Action(0, replyId, "Reply", DisabledPicture::Disable, "IDS_REPLY"),
    form::Action(1, backId, "MsmExit", DisabledPicture::Disable, "IDS_BACK"),
    form::Exit(exitId),
};
constexpr DialogSpec spec{
    .directory = form::directory,
    .background = form::background,
    .texts = texts,
    .buttons = buttons,
    .edits = edits,
    .returnClicks = replyId,
    .escapeClicks = exitId,
};

}  // namespace

CReadMessageDlg::CReadMessageDlg(ScreenContext& context, SmsBox box, const SmsRecord& record)
    : Dialog(context.desktop, spec), m_context(context), m_box(box), m_record(record) {
    OnClick(replyId, [this] { Reply(); });
    OnClick(backId, [this] { EndDialog(DialogResult::Ok); });
    OnClick(exitId, [this] { EndDialog(DialogResult::Ok); });
}

void CReadMessageDlg::SetTitle(std::string_view title) {
    m_title = title;
    if (IsOpen()) Get<StaticText>(titleId).SetWindowText(m_title);
}

void CReadMessageDlg::OnInitDialog() {
    const CodePage& page = m_context.platform.codePage;
    const bool received = m_box == SmsBox::Inbox;
    const std::string number = ShownLine(page, m_record.szPhoneNo.View());
    if (!m_title.empty()) SetTitle(m_title);
    Get<StaticText>(partyLabelId).SetWindowText(LoadText(received ? "IDS_ACCEPTEDONE" : "IDS_SENDONE"));
    Get<StaticText>(partyId).SetWindowText(number.empty() ? (received ? LoadText("IDS_UNKNOWN_CALLER") : "")
                                                          : m_context.session.Phones().NameOf(number));
    Get<StaticText>(timeId).SetWindowText(ShownLine(page, m_record.szTime.View()));
    auto& text = Get<EditField>(textId);
    text.SetWindowText(ShownText(page, m_record.szContent.View()));
    text.MoveToStart();
    // There is nobody to answer.
    Get<CSkinButton>(replyId).EnableWindow(!received || !number.empty());
}

void CReadMessageDlg::Reply() {
    const CodePage& page = m_context.platform.codePage;
    const std::string text =
        m_box == SmsBox::Inbox ? std::string() : ShownText(page, m_record.szContent.View());
    CWriteMessageDlg(m_context, ShownLine(page, m_record.szPhoneNo.View()), text).DoModal();
}

}  // namespace varkel
