#include "platform/linux/espeak_speech.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/linux/child_process.h"
#include "platform/text.h"

namespace varkel {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* program = "espeak-ng";

const char* VoiceOf(std::string_view language) {
    constexpr std::array<std::pair<std::string_view, const char*>, 5> voices{
        {{"chinese", "cmn"}, {"tchinese", "cmn"}, {"russian", "ru"}, {"portugal", "pt"}, {"arabic", "ar"}}};
    const auto* const found = std::find_if(voices.begin(), voices.end(),
                                           [language](const auto& each) { return each.first == language; });
    return found == voices.end() ? "en" : found->second;
}

// The program takes control characters for orders and what stands in "[[ ]]" for sounds.
std::string OnlyWords(std::string_view text) {
    std::string words(CutUtf8(text, EspeakSpeech::longestText));
    for (char& c : words) {
        if (static_cast<unsigned char>(c) < ' ' || c == '\x7F' || c == '[' || c == ']') c = ' ';
    }
    return words;
}

// A pipe that holds the whole text already, to be read from; it takes more than a text's length at once.
FileDescriptor PipeWith(std::string_view text) {
    static_assert(EspeakSpeech::longestText < PIPE_BUF);
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return {};
    FileDescriptor readEnd(ends[0]);
    const FileDescriptor writeEnd(ends[1]);
    return WriteAll(writeEnd.Get(), text) ? std::move(readEnd) : FileDescriptor();
}

}  // namespace

// Takes orders from any thread and carries them out on its own.
class EspeakSpeech::Speaker {
  public:
    Speaker(ProblemSink onProblem, std::chrono::milliseconds longest)
        : m_onProblem(std::move(onProblem)), m_longest(longest) {}

    // An empty text is silence.
    void Order(std::string text, const char* voice = "") {
        {
            std::lock_guard lock(m_mutex);
            m_order = Text{std::move(text), voice};
        }
        m_ordered.Signal();
    }

    void End() {
        {
            std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_ordered.Signal();
    }

    void Run() {
        for (;;) {
            Await();
            m_ordered.Clear();
            std::optional<Text> order;
            {
                std::lock_guard lock(m_mutex);
                if (m_ending) break;
                order = std::exchange(m_order, std::nullopt);
            }
            if (order) {
                Silence();
                if (!order->words.empty()) Speak(*order);
            } else {
                LookAtChild();
            }
        }
        Silence();
    }

  private:
    struct Text {
        std::string words;
        const char* voice;
    };

    // Sleeps until there is an order, or the program has ended or takes too long.
    void Await() {
        std::array<pollfd, 2> ready{{{m_ordered.Get(), POLLIN, 0}, {-1, POLLIN, 0}}};
        auto timeout = forever;
        if (m_child) {
            ready[1].fd = m_child->EndDescriptor();
            const auto left =
                std::chrono::duration_cast<std::chrono::microseconds>(m_deadline - Clock::now());
            timeout = std::max(left, std::chrono::microseconds(0));
        }
        Poll(ready, timeout);
    }

    void Speak(const Text& text) {
        const std::vector<std::string> command{program, "-v", text.voice, "-b", "1", "--stdin"};
        const FileDescriptor input = PipeWith(text.words);
        const FileDescriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
        // What an audio library has to complain about is nothing for the program's own terminal.
        if (input && nowhere) {
            auto child = ChildProcess::Start(command, {input.Get(), nowhere.Get(), nowhere.Get()});
            if (child) m_child.emplace(std::move(*child));
        }
        if (!m_child) return Failed(std::string(program) + " cannot be started");
        m_deadline = Clock::now() + m_longest;
    }

    void LookAtChild() {
        if (!m_child) return;
        if (m_child->Wait(std::chrono::microseconds(0))) {
            const int code = m_child->ExitCode();
            m_child.reset();
            if (code != 0) return Failed(std::string(program) + " has ended with " + std::to_string(code));
            m_reported = false;
        } else if (Clock::now() >= m_deadline) {
            Silence();
            Failed(std::string(program) + " does not end");
        }
    }

    // A killed program ends soon, unless a driver holds it; then the next start collects it.
    void Silence() {
        if (!m_child) return;
        constexpr auto patience = std::chrono::seconds(1);
        m_child->Kill();
        m_child->Wait(patience);
        m_child.reset();
    }

    void Failed(const std::string& why) {
        if (!std::exchange(m_reported, true)) Report(m_onProblem, "no speech: " + why);
    }

    const ProblemSink m_onProblem;
    const std::chrono::milliseconds m_longest;
    std::mutex m_mutex;
    std::optional<Text> m_order;  // under the mutex, as the next one
    bool m_ending = false;
    WakeUp m_ordered;

    // Of the thread alone.
    std::optional<ChildProcess> m_child;
    Clock::time_point m_deadline;
    bool m_reported = false;
};

EspeakSpeech::EspeakSpeech(Runtime& runtime, const Language& language, const CodePage& page,
                           ProblemSink onProblem, std::chrono::milliseconds longest)
    : m_language(language),
      m_page(page),
      m_speaker(std::make_unique<Speaker>(std::move(onProblem), longest)),
      m_thread(runtime.CreateThread({.name = "speech"}, [this] { m_speaker->Run(); })) {}

EspeakSpeech::~EspeakSpeech() {
    m_speaker->End();
    if (m_thread) m_thread->Wait(infiniteTicks);
}

int EspeakSpeech::jceInit(std::string_view, std::string_view) {
    return 0;
}

void EspeakSpeech::jceSetParam(int, int) {}

void EspeakSpeech::jcePlay(std::string_view narrow, WindowHandle) {
    m_speaker->Order(OnlyWords(Utf8FromNarrow(m_page, narrow)), VoiceOf(m_language.GetLanguage()));
}

void EspeakSpeech::jceStop() {
    m_speaker->Order({});
}

void EspeakSpeech::jceEnd() {
    m_speaker->Order({});
}

}  // namespace varkel
