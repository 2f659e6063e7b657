#include "client/command_line.h"

#include <CLI/CLI.hpp>

#include "platform/language.h"

namespace varkel::client {

namespace {

constexpr double longestTimeout = 86'400;  // s

constexpr const char* footer =
    "Exit codes: 0 done, 1 failed, 2 not a command line, 3 varkel is not running, 4 no answer in time.";

// The subcommands, each of which names itself in `parsed.command` when it was given.
class Commands {
  public:
    Commands(CLI::App& app, CommandLine& parsed) : m_parsed(parsed) {
        AddPlain(app);
        CLI::App* const send =
            Add(app, Command::Send, "send", "send a short message and wait for its result");
        send->add_option("number", parsed.number, "at most 15 digits, with + an international one")
            ->required();
        send->add_option("text", parsed.text, "at most 115 characters")->required();
        Add(app, Command::Language, "language", "change the language of the unit's screens")
            ->add_option("name", parsed.language, "of the language")
            ->required()
            ->check(CLI::IsMember(std::vector<std::string>(languageNames.begin(), languageNames.end())));
        CLI::App* const call = app.add_subcommand("call", "call a number that the unit has stored");
        call->require_subcommand(1);
        Add(*call, Command::CallSos, "sos", "the emergency number");
        Add(*call, Command::CallHelp, "help", "the help line");
        AddRegistry(*app.add_subcommand("reg", "read and write the unit's registry; varkel need not run"));
    }

  private:
    CLI::App* Add(CLI::App& parent, Command command, const char* name, const char* description) {
        CLI::App* const added = parent.add_subcommand(name, description);
        added->callback([this, command] { m_parsed.command = command; });
        return added;
    }

    void AddPlain(CLI::App& app) {
        Add(app, Command::Show, "show", "show the window");
        Add(app, Command::Hide, "hide", "leave the window, as the user does");
        Add(app, Command::Quit, "quit", "shut the module down, end the program and wait for that");
        Add(app, Command::Open, "open", "open the module");
        Add(app, Command::Imsi, "imsi", "print the SIM's IMSI");
        Add(app, Command::Imei, "imei", "print the module's IMEI");
        Add(app, Command::Status, "status", "print \"up\" or \"down\", the state of the data link");
        Add(app, Command::Watch, "watch", "print changes of the link, calls and messages until Ctrl-C");
    }

    void AddRegistry(CLI::App& reg) {
        reg.require_subcommand(1);
        const auto addKey = [this](CLI::App* command) {
            return command->add_option("key", m_parsed.key, "for example GPRS\\NetworkMode");
        };
        const auto addName = [this](CLI::App* command) {
            command->add_option("name", m_parsed.name, "the value's name")->required();
        };
        CLI::App* const get = Add(reg, Command::RegGet, "get", "print a value");
        addKey(get)->required();
        addName(get);
        CLI::App* const set = Add(reg, Command::RegSet, "set", "write a value");
        addKey(set)->required();
        addName(set);
        set->add_option("value", m_parsed.value, "dword:NUMBER, sz:TEXT or hex:BYTES")->required();
        addKey(
            Add(reg, Command::RegList, "list", "print all values, or those of a key and the keys below it"));
    }

    CommandLine& m_parsed;
};

}  // namespace

std::optional<CommandLine> ParseCommandLine(int argc, char** argv, ExitCode& exitCode) {
    CommandLine parsed;
    double timeout = 0;
    CLI::App app("Talks to the running telephone program of this unit", "varkelctl");
    app.set_version_flag("--version", "varkelctl " VARKEL_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(footer);
    app.add_option("--unit-file", parsed.unitFile, "the unit file that varkel was started with")
        ->check(CLI::ExistingFile);
    const CLI::Option* const given =
        app.add_option("--timeout", timeout, "seconds to wait for an answer (5; send 70, quit 30)")
            ->check(CLI::Range(0.0, longestTimeout));
    const Commands commands(app, parsed);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? ExitCode::Ok : ExitCode::Usage;
        return std::nullopt;
    }
    if (given->count() > 0) parsed.timeout = static_cast<Ticks>(timeout * 1000);
    return parsed;
}

}  // namespace varkel::client
