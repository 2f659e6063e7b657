#include "platform/linux/sdl_sound.h"

#include <SDL_hints.h>
#include <SDL_thread.h>
#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/audio_device.h"

namespace varkel {

// Takes orders from any thread and carries them out on its own.
class SdlSound::Player {
  public:
    Player(Runtime& runtime, ProblemSink onProblem)
        : m_runtime(runtime),
          m_onProblem(std::move(onProblem)),
          m_ordered(runtime.CreateEvent(EventReset::Automatic)) {}

    // Nothing to play is silence.
    void Order(std::optional<WavSound> sound, SoundMode mode) {
        {
            std::lock_guard lock(m_mutex);
            m_order = {std::move(sound), mode};
        }
        m_ordered->Set();
    }

    void End() {
        {
            std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_ordered->Set();
    }

    // The thread is left behind: nobody hears it any more.
    void Abandon() {
        std::lock_guard lock(m_mutex);
        m_onProblem = nullptr;
    }

    void Run() {
        for (Ticks wait = infiniteTicks;; wait = Continue()) {
            m_ordered->Wait(wait);
            std::optional<SoundOrder> order;
            {
                std::lock_guard lock(m_mutex);
                if (m_ending) break;
                order = std::exchange(m_order, std::nullopt);
            }
            if (order) Begin(std::move(*order));
        }
        m_device.ForgetQueued();
        m_device.Close();
        // SDL keeps the last fault of each thread.
        SDL_TLSCleanup();
    }

  private:
    struct SoundOrder {
        std::optional<WavSound> sound;
        SoundMode mode = SoundMode::Once;
    };

    void Begin(SoundOrder order) {
        m_device.ForgetQueued();
        if (!order.sound) return m_device.Close();
        const bool same = m_device.Works() && m_sound.SameFormat(*order.sound);
        m_sound = std::move(*order.sound);
        m_mode = order.mode;
        if (m_mode == SoundMode::Loop) Lengthen();
        m_began = m_runtime.GetTickCount();
        if (!same && !OpenDevice()) return;
        m_device.Queue(m_sound.samples);
        m_device.Start();
    }

    // A loop is queued lap by lap, and so a lap lasts a second at least.
    void Lengthen() {
        const std::string lap = m_sound.samples;
        while (m_sound.samples.size() < m_sound.BytesPerSecond())
            m_sound.samples += lap;
    }

    bool OpenDevice() {
        const std::string fault = m_device.Open(m_sound);
        std::lock_guard lock(m_mutex);
        if (fault.empty()) {
            m_reported = false;
        } else if (!std::exchange(m_reported, true)) {
            Report(m_onProblem, "no sound: " + fault);
        }
        return fault.empty();
    }

    // Goes on with what plays; how long until the next look.
    Ticks Continue() {
        if (!m_device.IsOpen()) return infiniteTicks;
        constexpr Ticks late = 2000;  // no device plays longer than that beyond a sound's length
        constexpr Ticks margin = 20;
        const std::size_t queued = m_device.Queued();
        const Ticks length = Time(m_sound.samples.size());
        if (m_mode == SoundMode::Loop) {
            if (queued < m_sound.samples.size() && !m_device.Queue(m_sound.samples)) m_device.Close();
            return length / 2;
        }
        if (queued > 0 && TicksSince(m_runtime.GetTickCount(), m_began) < length + late)
            return Time(queued) + margin;
        m_device.ForgetQueued();
        m_device.Close();
        return infiniteTicks;
    }

    Ticks Time(std::size_t bytes) const {
        return static_cast<Ticks>(bytes * 1000 / m_sound.BytesPerSecond());
    }

    Runtime& m_runtime;
    std::mutex m_mutex;
    ProblemSink m_onProblem;  // under the mutex, as the next two
    std::optional<SoundOrder> m_order;
    bool m_ending = false;
    const std::shared_ptr<Event> m_ordered;

    // Of the thread alone.
    AudioDevice m_device;
    WavSound m_sound;
    SoundMode m_mode = SoundMode::Once;
    Ticks m_began = 0;
    bool m_reported = false;
};

SdlSound::SdlSound(Runtime& runtime, UnitFiles& files, ProblemSink onProblem)
    : m_files(files),
      m_player(std::make_shared<Player>(runtime, std::move(onProblem))),
      m_thread(runtime.CreateThread({.name = "sound"}, [player = m_player] { player->Run(); })) {
    SDL_SetHint(SDL_HINT_AUDIO_DEVICE_APP_NAME, "Varkel");
}

SdlSound::~SdlSound() {
    constexpr Ticks patience = 2000;
    m_player->End();
    if (m_thread && m_thread->Wait(patience) != WaitResult::Object0) m_player->Abandon();
}

bool SdlSound::PlaySound(std::string_view path, SoundMode mode) {
    const auto file = path.empty() ? std::nullopt : m_files.ReadWhole(path, WavSound::largestFile);
    auto sound = file ? ReadWav(*file) : std::nullopt;
    const bool well = path.empty() || sound;
    m_player->Order(std::move(sound), mode);
    return well;
}

}  // namespace varkel
