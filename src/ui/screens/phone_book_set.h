// What the phonebook shows, and where it puts new entries. Dialog thread.
#pragma once

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// A choice holds as soon as it is touched: "CardDisp" and "CardSaveTo" of the settings.
class CPhoneBookSet final : public Dialog {
  public:
    explicit CPhoneBookSet(ScreenContext& context);

  private:
    void OnInitDialog() override;
};

}  // namespace varkel
