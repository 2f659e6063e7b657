// Speech through the program espeak-ng, which is not part of this one and need not be there.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "platform/code_page.h"
#include "platform/language.h"
#include "platform/linux/problem_sink.h"
#include "platform/runtime.h"
#include "platform/speech_engine.h"

namespace varkel {

// A thread of its own starts the program for each text, hands the text over on its standard input, and
// collects the program; while nothing is spoken it sleeps. The voice is that of the current language, so that
// packages and parameters are of no importance. Without the program, or when it fails, there is silence,
// which is reported once and tried again with the next text.
class EspeakSpeech final : public SpeechEngine {
  public:
    // All of these outlive the object. `onProblem` hears it on the speech thread.
    // A program that takes longer than `longest` hangs and is ended.
    EspeakSpeech(Runtime& runtime, const Language& language, const CodePage& page, ProblemSink onProblem,
                 std::chrono::milliseconds longest = std::chrono::seconds(30));
    // Ends what is spoken.
    ~EspeakSpeech() override;

    int jceInit(std::string_view chinesePackage, std::string_view englishPackage) override;
    void jceSetParam(int parameter, int value) override;
    void jcePlay(std::string_view narrow, WindowHandle window) override;
    void jceStop() override;
    void jceEnd() override;

    static constexpr std::size_t longestText = 1000;  // bytes of UTF-8; what is longer is cut

  private:
    class Speaker;

    const Language& m_language;
    const CodePage& m_page;
    const std::unique_ptr<Speaker> m_speaker;
    const std::shared_ptr<Thread> m_thread;
};

}  // namespace varkel
