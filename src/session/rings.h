// The sounds that the user can choose for a call and for a message.
#pragma once

#include <string_view>

namespace varkel {

enum class RingKind { Call, Message };

// 0 is what a new unit plays; the last choice is silence. Kept in the registry as the number.
inline constexpr int ringChoices = 4;
inline constexpr int silentRing = ringChoices - 1;

// The device path of a choice; empty for silence. A number that is no choice gives the first.
std::string_view RingSound(RingKind kind, int choice);

}  // namespace varkel
