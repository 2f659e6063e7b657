// The incoming call: who calls, and the buttons to accept and to reject. Above all other screens, from the
// ring until the call is answered or has ended. Dialog thread.
#pragma once

#include <string>
#include <string_view>

#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// The session shows it with every ring and ends it.
class CCallInDlg final : public Dialog {
  public:
    explicit CCallInDlg(ScreenContext& context);

    // Who rings, in words; kept while the screen is not open, forgotten by an empty text.
    void SetCallerText(std::string_view text);
    // On an open screen another ring says that the call is neither accepted nor rejected.
    void Show();

    // A finger that comes down sooner was meant for what stood there before.
    static constexpr Ticks deafTime = 400;
    // How long the caller's number may stay away behind the first ring.
    static constexpr Ticks callerTime = 1000;
    // How long an answer or a rejection may take to show.
    static constexpr Ticks longestWait = 10'000;

  private:
    void OnInitDialog() override;

    void Accept();
    void Reject();
    void ShowCaller();
    void Offer();
    void Await(std::string_view key);

    CVarkelDlg& m_session;
    std::string m_caller;
    bool m_again = false;  // opens once more when it has closed
};

}  // namespace varkel
