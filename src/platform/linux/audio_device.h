// The system's audio output while something plays.
#pragma once

#include <SDL_audio.h>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/linux/wav_sound.h"

namespace varkel {

// SDL's audio watches for devices as long as it is initialised, ten times a second with ALSA; so it is
// initialised with the device and ends with it. One thread.
class AudioDevice {
  public:
    AudioDevice() = default;
    AudioDevice(const AudioDevice&) = delete;
    AudioDevice& operator=(const AudioDevice&) = delete;
    ~AudioDevice() { Close(); }

    // Opens the default output for samples of that kind, which waits until it is started; "", or why there is
    // none.
    std::string Open(const WavSound& sound);
    void Start();
    // Lets the samples that the device has already taken sound out.
    void Close();
    bool IsOpen() const { return m_device != 0; }
    // Open, and not unplugged since.
    bool Works() const;

    bool Queue(std::string_view samples);
    // Bytes that were queued and not played.
    std::size_t Queued() const;
    void ForgetQueued();

  private:
    SDL_AudioDeviceID m_device = 0;
};

}  // namespace varkel
