// The session on the simulated unit, with the screens of calls and codes on a display that nobody sees.
#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "platform/linux/initial_registry.h"
#include "platform/linux/linux_unit_files.h"
#include "platform/linux/offscreen_display.h"
#include "tests/platform/pictures.h"
#include "tests/support/scratch.h"
#include "tests/support/session_bench.h"
#include "ui/call_in_dlg.h"
#include "ui/dial_pad.h"
#include "ui/edit_field.h"
#include "ui/screen_context.h"
#include "ui/static_text.h"
#include "ui/ussd_dlg.h"

namespace varkel::test {

struct CallScreens : SessionBench {
    explicit CallScreens(const std::string& skin = "night", const std::string& languageName = "english",
                         const sim::UnitConfig& config = {})
        : SessionBench(1, config),
          unitFiles(scratch.Path(), VARKEL_ASSETS, VARKEL_ASSETS "/skin-" + skin),
          display(loop, unitFiles),
          desktop({loop, display, windows, unitFiles, registry, language}) {
        LoadInitialRegistry(registry, FileContent(VARKEL_ASSETS "/skin-" + skin + "/registry.txt"));
        Settings(registry).WriteDword(Settings::dialogTypeKey, "Gprs", 0);
        files.WriteWhole("ResidentFlash2\\bin\\Language\\" + languageName + ".txt",
                         FileContent(VARKEL_ASSETS "/ResidentFlash2/bin/Language/" + languageName + ".txt"));
        language = Language(files, languageName);
        dialog = std::make_unique<CVarkelDlg>(platform, shown);
        context = std::make_unique<ScreenContext>(ScreenContext{desktop, *dialog, platform});
        callIn = std::make_unique<CCallInDlg>(*context);
        ussd = std::make_unique<CUssdDlg>(*context);
        dialog->OnInitDialog("", LogLevel::Debug);
    }
    ~CallScreens() {
        Quit();
        ussd.reset();
        callIn.reset();
        dialog.reset();
    }

    void OpenModule() {
        dialog->OpenModule();
        EXPECT_TRUE(RunUntilOpenEnds());
        RunFor(1000);
        unit.TakeTrace();
    }

    // Lets the dialog thread do what is waiting.
    void Settle() { RunFor(5); }
    void Tap(const Control& control) {
        display.Tap(
            {control.Place().x + control.Place().width / 2, control.Place().y + control.Place().height / 2});
        Settle();
    }
    void Tap(Dialog& screen, int id) { Tap(screen.Get<Control>(id)); }
    void Type(std::string_view keys) {
        for (const char& key : keys) {
            display.Key({KeyCode::None, std::string(1, key)});
            Settle();
        }
    }
    void Press(KeyCode code) {
        display.Key({code, {}});
        Settle();
    }
    static std::string TextOf(Dialog& screen, int id) { return screen.Get<StaticText>(id).GetWindowText(); }
    // What the modem was sent since the trace was last taken, without the signal poll.
    std::vector<std::string> Commands() {
        std::vector<std::string> commands;
        for (std::string& line : unit.TakeTrace()) {
            if (line.starts_with("AT") && line != "AT+CSQ") commands.push_back(std::move(line));
        }
        return commands;
    }

    // Notes what it is told, and hands it to the screens.
    class Shown final : public ScriptedScreens {
      public:
        explicit Shown(CallScreens& bench) : ScriptedScreens(bench.runtime), m_bench(bench) {}

        void ShowIncomingCall(bool show) override {
            ScriptedScreens::ShowIncomingCall(show);
            m_bench.loop.Post([this, show] {
                show ? m_bench.callIn->Show() : m_bench.callIn->EndDialog(DialogResult::Cancel);
            });
        }
        void SetCallerText(std::string_view text) override {
            m_bench.loop.Post([this, caller = std::string(text)] { m_bench.callIn->SetCallerText(caller); });
        }
        void ShowUssd(std::string_view text, bool replyExpected) override {
            ScriptedScreens::ShowUssd(text, replyExpected);
            m_bench.loop.Post([this, answer = std::string(text), replyExpected] {
                m_bench.ussd->SetText(answer, replyExpected);
                m_bench.ussd->Show([this](DialogResult) { m_ussd = false; });
            });
            m_ussd = true;
        }
        bool HideUssd() override {
            if (!m_ussd.exchange(false)) return false;
            m_bench.loop.Post([this] { m_bench.ussd->EndDialog(DialogResult::Cancel); });
            return true;
        }
        void Repaint() override {
            m_bench.loop.Post([this] { m_bench.desktop.OnSessionChanged(); });
        }

      private:
        CallScreens& m_bench;
        std::atomic<bool> m_ussd = false;
    };

    ScratchDirectory scratch;
    LinuxUnitFiles unitFiles;
    OffscreenDisplay display;
    Desktop desktop;
    Shown shown{*this};
    std::unique_ptr<ScreenContext> context;
    std::unique_ptr<CCallInDlg> callIn;
    std::unique_ptr<CUssdDlg> ussd;
};

}  // namespace varkel::test
