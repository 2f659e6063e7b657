// An operator's record as the user reads and writes it.
#pragma once

#include <optional>
#include <string>

#include "platform/code_page.h"
#include "session/warn_code.h"
#include "stores/isp_record.h"

namespace varkel {

// UTF-8.
struct IspText {
    std::string name;
    std::string userName;
    std::string password;
    std::string accessPoint;
    std::string dialNumber;
    std::string operatorCode;
};

// What is wrong with which text.
struct IspFault {
    std::string IspText::*text;
    WarnCode warning;
};

IspText IspTextOf(const CodePage& page, const ISP_Struct& isp);

// Nothing is cut: what a field does not hold, or no dial-up could use, is the fault, and `isp` stays as it
// was.
[[nodiscard]] std::optional<IspFault> MakeIsp(const CodePage& page, const IspText& text, ISP_Struct& isp);

}  // namespace varkel
