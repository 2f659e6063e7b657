// The texts of the warnings.
#pragma once

#include <string>

#include "platform/language.h"
#include "session/warn_code.h"

namespace varkel {

// The text of a code in the current language; empty for a code outside 1..39.
std::string WarnText(WarnCode code, const Language& language);

}  // namespace varkel
