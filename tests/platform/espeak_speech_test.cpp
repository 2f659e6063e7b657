#include "platform/linux/espeak_speech.h"

#include <functional>
#include <gmock/gmock.h>

#include "tests/platform/dialog_fixture.h"
#include "tests/platform/problem_list.h"
#include "tests/support/code_pages.h"
#include "tests/support/memory_files.h"
#include "tests/support/scratch.h"

namespace varkel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The program is a script of the test's own, alone on the PATH.
class EspeakSpeechTest : public test::DialogFixture {
  protected:
    EspeakSpeechTest() { setenv("PATH", scratch.Path().c_str(), 1); }
    ~EspeakSpeechTest() override {
        speech.reset();
        setenv("PATH", path.c_str(), 1);
    }

    void Install(std::string_view script) {
        // In one step: the program may be started meanwhile.
        const std::string file = scratch / "new";
        test::WriteFile(file,
                        "#!/bin/sh\nPATH=/bin:/usr/bin\ncd " + scratch.Path() + "\n" + std::string(script));
        chmod(file.c_str(), 0700);
        std::filesystem::rename(file, scratch / "espeak-ng");
    }
    void Start(std::string_view language = "english",
               std::chrono::milliseconds longest = std::chrono::minutes(1)) {
        m_language = std::make_unique<Language>(files, language);
        speech = std::make_unique<EspeakSpeech>(runtime, *m_language, test::CodePageNamed("GB18030"),
                                                problems.Sink(), longest);
        EXPECT_EQ(speech->jceInit("cn", "en"), 0);
    }
    void Play(std::string_view narrow) { speech->jcePlay(narrow, WindowHandle::None); }
    bool Hears(const std::string& voice, const std::string& text) {
        return ServeUntil([&] { return Heard() == "-v " + voice + " -b 1 --stdin\n" + text; });
    }
    bool EndsAlone() {
        return ServeUntil([this] { return NoChildren(); });
    }

    std::string Heard() { return test::FileContent(scratch / "heard"); }
    bool NoChildren() {
        const auto task = std::filesystem::directory_iterator("/proc/self/task");
        return std::all_of(begin(task), end(task), [](const auto& thread) {
            return test::FileContent(thread.path() / "children").empty();
        });
    }

    test::ScratchDirectory scratch;
    const std::string path = getenv("PATH");
    test::MemoryFiles files;
    test::ProblemList problems;
    std::unique_ptr<EspeakSpeech> speech;

  private:
    std::unique_ptr<Language> m_language;
};

// Writes its arguments and its input, and then says that it is done.
constexpr std::string_view listens =
    "echo \"$*\" >text; cat >>text; echo noise; echo noise >&2; mv text heard\n";

TEST_F(EspeakSpeechTest, HandsOverTheTextAndNothingElse) {
    Install(listens);
    Start("portugal");
    const std::pair<std::string, std::string> texts[] = {
        {"Settings", "Settings"},
        {"--help", "--help"},
        {"$(touch hurt); `id` 'x' \"y\" | > *", "$(touch hurt); `id` 'x' \"y\" | > *"},
        {"\x01"
         "100s\x1B\n\x7F[[p",
         " 100s     p"},
        {"\xC9\xE8\xD6\xC3", "设置"},
        {std::string(5000, 'x'), std::string(EspeakSpeech::longestText, 'x')},
    };
    const auto descriptors = test::OpenDescriptors();
    for (const auto& [text, heard] : texts) {
        Play(text);
        EXPECT_TRUE(Hears("pt", heard)) << heard << "\n" << Heard();
    }
    EXPECT_TRUE(EndsAlone()) << "collected";
    EXPECT_EQ(test::OpenDescriptors(), descriptors);
    EXPECT_FALSE(std::filesystem::exists(scratch / "hurt"));
    EXPECT_THAT(problems.All(), IsEmpty());
    Start("klingon");
    Play("x");
    EXPECT_TRUE(Hears("en", "x"));
}

TEST_F(EspeakSpeechTest, EndsOneTextForTheNext) {
    Install("echo $$ >>began; cat >/dev/null; sleep 1000\n");
    Start();
    const auto before = runtime.GetTickCount();
    for (int i = 0; i < 20; ++i)
        Play("a text that lasts");
    EXPECT_LT(TicksSince(runtime.GetTickCount(), before), 1000u) << "the caller waits for nothing";
    EXPECT_TRUE(ServeUntil([this] { return !test::FileContent(scratch / "began").empty(); }));
    Install(listens);
    Play("the next one");
    EXPECT_TRUE(Hears("en", "the next one"));
    EXPECT_TRUE(EndsAlone());

    Install("touch sleeps; sleep 1000\n");
    Play("one that does not even read");
    EXPECT_TRUE(ServeUntil([this] { return std::filesystem::exists(scratch / "sleeps"); }));
    speech->jceStop();
    EXPECT_TRUE(EndsAlone());
    Play("and one at the end");
    speech.reset();
    EXPECT_TRUE(NoChildren());
    EXPECT_THAT(problems.All(), IsEmpty());
}

TEST_F(EspeakSpeechTest, ReportsOnceThatThereIsNoSpeech) {
    Start();
    Play("x");
    Play("x");
    EXPECT_TRUE(ServeUntil([this] { return !problems.All().empty(); }));
    Install("exit 3\n");
    Play("x");
    Install(listens);
    Play("works");
    EXPECT_TRUE(ServeUntil([this] { return !Heard().empty() && NoChildren(); }))
        << "tried again with each text";
    EXPECT_THAT(problems.All(), ElementsAre("no speech: espeak-ng cannot be started"));
    Install("exit 3\n");
    Play("x");
    EXPECT_TRUE(ServeUntil([this] { return problems.All().size() == 2; }));
    EXPECT_EQ(problems.All().back(), "no speech: espeak-ng has ended with 3");
}

TEST_F(EspeakSpeechTest, EndsAProgramThatHangs) {
    Install("sleep 1000\n");
    Start("english", std::chrono::milliseconds(50));
    Play("x");
    EXPECT_TRUE(ServeUntil([this] { return !problems.All().empty() && NoChildren(); }));
    EXPECT_THAT(problems.All(), ElementsAre("no speech: espeak-ng does not end"));
}

}  // namespace
}  // namespace varkel
