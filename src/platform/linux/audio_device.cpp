#include "platform/linux/audio_device.h"

#include <SDL_error.h>

namespace varkel {

std::string AudioDevice::Open(const WavSound& sound) {
    Close();
    // Not SDL_InitSubSystem: that would bring events along, and with them handlers of signals.
    if (SDL_AudioInit(nullptr) != 0) return SDL_GetError();
    // Asked first, because ALSA writes a page to the terminal when it opens a device that is not there.
    if (SDL_GetNumAudioDevices(0) == 0) {
        SDL_AudioQuit();
        return "the system has no audio output";
    }
    SDL_AudioSpec spec{};
    spec.freq = sound.rate;
    spec.format = sound.bits == 8 ? AUDIO_U8 : AUDIO_S16LSB;
    spec.channels = static_cast<Uint8>(sound.channels);
    spec.samples = 1024;
    m_device = SDL_OpenAudioDevice(nullptr, 0, &spec, nullptr, 0);
    if (m_device == 0) {
        std::string fault = SDL_GetError();
        SDL_AudioQuit();
        return fault;
    }
    return {};
}

void AudioDevice::Start() {
    SDL_PauseAudioDevice(m_device, 0);
}

void AudioDevice::Close() {
    if (m_device == 0) return;
    SDL_CloseAudioDevice(m_device);
    SDL_AudioQuit();
    m_device = 0;
}

bool AudioDevice::Works() const {
    return m_device != 0 && SDL_GetAudioDeviceStatus(m_device) == SDL_AUDIO_PLAYING;
}

bool AudioDevice::Queue(std::string_view samples) {
    return SDL_QueueAudio(m_device, samples.data(), static_cast<Uint32>(samples.size())) == 0;
}

std::size_t AudioDevice::Queued() const {
    return SDL_GetQueuedAudioSize(m_device);
}

void AudioDevice::ForgetQueued() {
    SDL_ClearQueuedAudio(m_device);
}

}  // namespace varkel
