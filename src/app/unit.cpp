#include "app/unit.h"

#include <cstdio>
#include <string>

#include "session/settings.h"

namespace varkel {

namespace {

UnitSettings LoadSettings(const Options& options) {
    UnitSettings settings =
        options.unitFile.empty() ? UserUnitSettings() : LoadUnitSettings(options.unitFile);
    if (!options.port.empty()) settings.serial["COM7:"] = options.port;
    if (!options.assets.empty()) settings.assets = options.assets;
    if (!options.language.empty()) settings.language = options.language;
    settings.palette = ParsePalette(options.palette).value_or(settings.palette);
    return settings;
}

const ModemProfile* ProfileOf(ModemKind modem) {
    switch (modem) {
        case ModemKind::Unit: break;
        case ModemKind::Standard: return &standardModule;
        case ModemKind::Auto: return nullptr;
    }
    return &unitModule;
}

}  // namespace

SessionOptions SessionOptionsOf(const UnitSettings& settings) {
    return {.profile = ProfileOf(settings.modem),
            .countryCode = settings.countryCode,
            .pingAddresses = settings.pingAddresses};
}

Unit::Unit(Run& run) : m_terminal(run.loop), m_settings(LoadSettings(run.options)) {
    for (const std::string& error : m_settings.errors)
        Report("unit file: " + error);
    m_services.emplace(run.runtime, run.loop, m_settings,
                       [this](std::string_view problem) { Report(problem); });
    if (run.options.language.empty()) FollowChosenLanguage();
    if (run.options.debugOutput) {
        m_services->GetLog().SetDebugSink(
            [](std::string_view text) { std::fwrite(text.data(), 1, text.size(), stderr); });
    }
}

void Unit::FollowChosenLanguage() {
    if (!Usable()) return;
    const auto name = varkel::Settings(*m_services->GetRegistry()).ReadLanguage();
    if (name && !m_services->GetLanguage().Change(*name)) Report("there are no texts in " + *name);
}

void Unit::Report(std::string_view problem) {
    m_terminal.PrintLine("[unit] " + std::string(problem));
    if (m_services)
        m_services->GetLog().Trace("[unit]--%.*s", static_cast<int>(problem.size()), problem.data());
}

}  // namespace varkel
