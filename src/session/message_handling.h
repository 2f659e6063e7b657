// Short messages, as the rest of the session uses them.
#pragma once

#include <string_view>

#include "modem/at_channel.h"

namespace varkel {

class MessageHandling {
  public:
    virtual ~MessageHandling() = default;

    // Read thread; quick.
    virtual void OnMsComeIn(std::string_view text) = 0;
    virtual void OnMsContent(std::string_view text) = 0;
    virtual void OnMsCenterNo(std::string_view text) = 0;
    virtual void OnSendMsSuc() = 0;
    virtual void OnSendState(SendState state) = 0;
    virtual void OnSendTip() = 0;
};

}  // namespace varkel
