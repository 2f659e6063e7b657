// varkel-sim: the command line.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <map>
#include <string>
#include <utility>

#include "simulator/program/simulator_program.h"

int main(int argc, char** argv) {
    using namespace varkel::sim;
    ProgramOptions options;
    options.unitDirectory = DefaultUnitDirectory();

    CLI::App app("A head unit with a modem, a SIM and a network, simulated; a program may run on it.");
    app.set_version_flag("--version", VARKEL_VERSION);
    app.add_option("--unit-dir", options.unitDirectory, "Where the unit lives; made when missing")
        ->capture_default_str();
    app.add_option("--assets", options.assets, "The installed read-only files of the program")
        ->check(CLI::ExistingDirectory);
    app.add_option("--scenario", options.scenario, "What happens, and when")->check(CLI::ExistingFile);
    app.add_option("--pin", options.pin, "The SIM asks for this PIN")
        ->check([](const std::string& pin) -> std::string {
            return SimCard::WellFormed(SimCode::Pin, pin) ? "" : "a PIN has 4 to 8 digits";
        });
    app.add_option("--modem", options.modem,
                   "unit: the module that the unit is made with; standard: any other")
        ->transform(CLI::CheckedTransformer(
            std::map<std::string, ModemKind>{{"unit", ModemKind::Unit}, {"standard", ModemKind::Standard}},
            CLI::ignore_case))
        ->default_str("unit");
    app.add_option("--seed", options.seed, "Chance that repeats")->capture_default_str();
    app.add_flag("--quiet", options.quiet, "Do not show what goes over the serial line");
    app.add_option("program", options.command, "The program that runs on the unit, and its arguments");
    app.positionals_at_end();
    app.footer(
        "The program finds the unit in DIR/unit.conf. Lines typed here go to the program; those that begin "
        "with \"!\", or all of them when there is none, are commands for the simulator: try \"!help\".");
    CLI11_PARSE(app, argc, argv);
    return SimulatorProgram(std::move(options)).Run();
}
