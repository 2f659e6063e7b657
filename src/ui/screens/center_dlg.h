// The number of the service centre that messages are sent through. Dialog thread.
#pragma once

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// Stays open, with a warning above it, until the number is one that can be used or the user leaves it as it
// was.
class CCenterDlg final : public Dialog {
  public:
    explicit CCenterDlg(ScreenContext& context);

    static constexpr int numberId = 1101;
    static constexpr int exitId = 1075;

  private:
    void OnInitDialog() override;
    void Save();

    ScreenContext& m_context;
};

}  // namespace varkel
