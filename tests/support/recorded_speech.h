// A speech engine that nobody hears: what it was told is written down.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/speech_engine.h"

namespace varkel::test {

class RecordedSpeech final : public SpeechEngine {
  public:
    int jceInit(std::string_view chinesePackage, std::string_view englishPackage) override {
        m_calls.push_back("init " + std::string(chinesePackage) + " " + std::string(englishPackage));
        return initResult;
    }
    void jceSetParam(int parameter, int value) override {
        m_calls.push_back("param " + std::to_string(parameter) + " " + std::to_string(value));
    }
    void jcePlay(std::string_view narrow, WindowHandle) override {
        m_calls.push_back("play " + std::string(narrow));
    }
    void jceStop() override { m_calls.emplace_back("stop"); }
    void jceEnd() override { m_calls.emplace_back("end"); }

    // The calls since the last look.
    std::vector<std::string> TakeCalls() { return std::exchange(m_calls, {}); }

    int initResult = 0;

  private:
    std::vector<std::string> m_calls;
};

}  // namespace varkel::test
