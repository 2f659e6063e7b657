#include "session/rings.h"

namespace varkel {

namespace {

constexpr std::string_view callSounds[ringChoices] = {"\\ResidentFlash2\\bin\\ring.wav",
                                                      "\\ResidentFlash2\\bin\\ring2.wav",
                                                      "\\ResidentFlash2\\bin\\ring3.wav", ""};
constexpr std::string_view messageSounds[ringChoices] = {"\\ResidentFlash2\\bin\\msg.wav",
                                                         "\\ResidentFlash2\\bin\\msg2.wav",
                                                         "\\ResidentFlash2\\bin\\msg3.wav", ""};

}  // namespace

std::string_view RingSound(RingKind kind, int choice) {
    const auto& sounds = kind == RingKind::Call ? callSounds : messageSounds;
    return sounds[choice >= 0 && choice < ringChoices ? choice : 0];
}

}  // namespace varkel
