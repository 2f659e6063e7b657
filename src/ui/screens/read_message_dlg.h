// One message. Dialog thread.
#pragma once

#include "stores/message_box.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

class CReadMessageDlg final : public Dialog {
  public:
    // A received one is answered; a sent one or a draft is written on.
    CReadMessageDlg(ScreenContext& context, SmsBox box, const SmsRecord& record);

    // Instead of the usual title.
    void SetTitle(std::string_view title);

  private:
    void OnInitDialog() override;
    void Reply();

    ScreenContext& m_context;
    const SmsBox m_box;
    const SmsRecord m_record;
    std::string m_title;
};

}  // namespace varkel
