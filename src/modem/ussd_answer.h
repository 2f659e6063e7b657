// What the network says to a service code: "+CUSD: 1,"text",15" (3GPP TS 27.007, 7.15).
#pragma once

#include <string>
#include <string_view>

#include "platform/code_page.h"

namespace varkel {

enum class UssdStatus {
    Finished = 0,
    ReplyExpected = 1,
    Terminated = 2,  // by the network
    OtherClient = 3,
    NotSupported = 4,
    TimedOut = 5,
};

struct UssdAnswer {
    UssdStatus status = UssdStatus::Finished;
    std::string text;  // UTF-8

    // The request came to nothing.
    bool Failed() const { return status == UssdStatus::NotSupported || status == UssdStatus::TimedOut; }
};

// Takes the text from its keyword on, with whatever else stands behind it. The words are decoded by their
// coding scheme: UCS2 and packed septets in hexadecimal, or characters of the default alphabet. `page` is for
// a module that sends none of these. A line that tells no status is a message that expects no reply.
UssdAnswer ParseUssdAnswer(std::string_view line, const CodePage& page);

}  // namespace varkel
