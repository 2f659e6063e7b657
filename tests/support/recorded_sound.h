// Sounds that nobody hears: what was played is written down.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/sound.h"

namespace varkel::test {

class RecordedSound final : public Sound {
  public:
    bool PlaySound(std::string_view path, SoundMode mode) override {
        std::lock_guard lock(m_mutex);
        m_played.push_back(std::string(path) + (mode == SoundMode::Loop ? " loop" : ""));
        return true;
    }

    // The path of each sound, with " loop" behind one that repeats; "" for an end of what plays.
    std::vector<std::string> Played() {
        std::lock_guard lock(m_mutex);
        return m_played;
    }

    void Forget() {
        std::lock_guard lock(m_mutex);
        m_played.clear();
    }

  private:
    std::mutex m_mutex;
    std::vector<std::string> m_played;
};

}  // namespace varkel::test
