// The unit's sounds, one at a time.
#pragma once

#include <string_view>

namespace varkel {

enum class SoundMode { Once, Loop };

class Sound {
  public:
    virtual ~Sound() = default;

    // PlaySound, asynchronous and without a default sound: plays the WAV file of that device path in place of
    // what plays now, and returns at once. An empty path only ends what plays. A file that is missing or
    // damaged is silence as well, and false. That there is nothing to play on is no failure of the call. Any
    // thread.
    virtual bool PlaySound(std::string_view path, SoundMode mode = SoundMode::Once) = 0;
};

}  // namespace varkel
