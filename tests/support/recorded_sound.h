// Sounds that nobody hears: what was played is written down.
#pragma once

#include <string>
#include <vector>

#include "platform/guarded.h"
#include "platform/sound.h"

namespace varkel::test {

class RecordedSound final : public Sound {
  public:
    bool PlaySound(std::string_view path, SoundMode mode) override {
        m_played.With([&](auto& played) {
            played.push_back(std::string(path) + (mode == SoundMode::Loop ? " loop" : ""));
        });
        return true;
    }

    // The path of each sound, with " loop" behind one that repeats; "" for an end of what plays.
    std::vector<std::string> Played() const { return m_played.Get(); }
    void Forget() { m_played.Set({}); }

  private:
    Guarded<std::vector<std::string>> m_played;
};

}  // namespace varkel::test
