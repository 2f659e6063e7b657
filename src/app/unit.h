// The unit that the program runs on: its terminal, its unit file and its services.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "app/linux_platform.h"
#include "app/options.h"
#include "platform/linux/console_terminal.h"
#include "session/session.h"

namespace varkel {

// What main hands to a run of the program. `quit` is what a request to end calls, on the dialog thread.
struct Run {
    const Options& options;
    LinuxRuntime& runtime;
    MessageLoop& loop;
    std::function<void()> quit;
};

class Unit {
  public:
    explicit Unit(Run& run);

    // Without a registry the program cannot run.
    bool Usable() { return m_services->GetRegistry() != nullptr; }
    LinuxPlatform& Services() { return *m_services; }
    const UnitSettings& Settings() const { return m_settings; }
    ConsoleTerminal& Terminal() { return m_terminal; }
    // What a service has to say of itself. Any thread.
    void Report(std::string_view problem);

  private:
    // The unit file says with which language a unit begins; later ones stand in the registry.
    void FollowChosenLanguage();

    ConsoleTerminal m_terminal;
    const UnitSettings m_settings;
    std::optional<LinuxPlatform> m_services;
};

// What the integrator chose for the session.
SessionOptions SessionOptionsOf(const UnitSettings& settings);

// The two ways to run the program, until it ends; the exit code.
int RunHeadless(Run& run);
int RunWindowed(Run& run);

}  // namespace varkel
