// Sounds through SDL's audio, of which nothing else is used: no video, no events, no signal handlers.
#pragma once

#include <memory>

#include "platform/linux/problem_sink.h"
#include "platform/runtime.h"
#include "platform/sound.h"
#include "platform/unit_files.h"

namespace varkel {

// WAV files of at most 8 MiB and 30 s, PCM, mono or stereo. A thread of its own plays them; while nothing
// plays it sleeps, and neither a device nor a connection to a sound server is open. Without a device there is
// silence, which is reported once and tried again with the next sound. One in a program.
class SdlSound final : public Sound {
  public:
    // `onProblem` hears it on the sound thread.
    SdlSound(Runtime& runtime, UnitFiles& files, ProblemSink onProblem);
    // Ends what plays. A thread that hangs in a driver is left behind after 2 s.
    ~SdlSound() override;

    bool PlaySound(std::string_view path, SoundMode mode) override;

  private:
    class Player;

    UnitFiles& m_files;
    const std::shared_ptr<Player> m_player;  // shared with its thread
    const std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
