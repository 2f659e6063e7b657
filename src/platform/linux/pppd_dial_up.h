// Dial-up networking by the program pppd.
#pragma once

#include "platform/dial_up.h"

namespace varkel {

class PppdDialUp final : public DialUp {
  public:
    RasError RasDial(const RasDialParams& params, std::function<void(RasState)> notifier,
                     RasHandle& handle) override;
    void RasHangUp(RasHandle handle) override;
};

}  // namespace varkel
