// A message of the network, and the user's reply to it. Dialog thread.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ui/screens/number_dlg.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"
#include "ui/toolkit/text_lines.h"

namespace varkel {

class CUssdDlg final : public Dialog {
  public:
    explicit CUssdDlg(ScreenContext& context);

    // What the network says, and whether it waits for a reply; before Show, or on the open screen. An empty
    // text says that the dialogue has ended.
    void SetText(std::string_view text, bool replyExpected);
    void OnSessionChanged() override;

  private:
    void OnInitDialog() override;
    void OnDestroy() override;
    void OnPaint(Canvas& canvas) override;

    void Reply();
    void Leave();
    void ShowMessage();
    void ShowState();
    void TurnPage(int by);
    int LinesOfPage() const;

    ScreenContext& m_context;
    std::string m_text;
    bool m_replyExpected = false;
    std::unique_ptr<CNumberDlg> m_reply;

    LogFont m_font;
    int m_lineHeight = 1;
    std::vector<TextLine> m_lines;
    int m_firstLine = 0;  // that is seen
};

}  // namespace varkel
