// A question for one code or two.
#pragma once

#include <string>

#include "session/screens.h"

namespace varkel::test {

// What is asked for, and the only answer that is accepted.
inline CodeRequest AskFor(std::string firstLabel, std::string secondLabel, std::string first = "",
                          std::string second = "") {
    return {.title = "IDS_INPUT",
            .firstLabel = std::move(firstLabel),
            .secondLabel = std::move(secondLabel),
            .check =
                [first, second](std::string_view typedFirst, std::string_view typedSecond) {
                    const bool right = typedFirst == first && typedSecond == second;
                    return right ? std::nullopt : std::optional(WarnCode::NumberInvalid);
                },
            .cancelled = [] { return false; }};
}

}  // namespace varkel::test
