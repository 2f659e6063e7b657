#include "app/linux_platform.h"

#include <fstream>
#include <iterator>
#include <string>

#include "platform/linux/board_kovex_drv.h"
#include "platform/linux/bus_kovex_drv.h"
#include "platform/linux/iconv_code_page.h"
#include "platform/linux/initial_registry.h"

namespace varkel {

namespace {

std::unique_ptr<KovexDrvApi> MakeDriver(Bus& bus, const UnitSettings& settings,
                                        const ProblemSink& onProblem) {
    if (settings.driver == DriverKind::Bus) return std::make_unique<BusKovexDrv>(bus);
    return std::make_unique<BoardKovexDrv>(settings.board, settings.TtyOf("COM7:"), onProblem);
}

std::unique_ptr<SqliteRegistry> OpenRegistry(const UnitSettings& settings, const ProblemSink& onProblem) {
    auto registry = SqliteRegistry::Open(settings.registry, onProblem);
    if (!registry || settings.initialRegistry.empty()) return registry;
    std::ifstream file(settings.initialRegistry, std::ios::binary);
    if (!file) {
        Report(onProblem, settings.initialRegistry + " cannot be read");
        return registry;
    }
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    for (const std::string& error : LoadInitialRegistry(*registry, text)) {
        Report(onProblem, settings.initialRegistry + ", " + error);
    }
    return registry;
}

}  // namespace

LinuxPlatform::LinuxPlatform(LinuxRuntime& runtime, MessageLoop& loop, const UnitSettings& settings,
                             ProblemSink onProblem)
    : m_runtime(runtime),
      m_loop(loop),
      m_files(settings.root, settings.assets),
      m_log(runtime, m_files),
      m_language(m_files, settings.language),
      m_codePage(DisplayCodePage(m_language.GetLanguage(), settings.systemCodePage, onProblem)),
      m_registry(OpenRegistry(settings, onProblem)),
      m_objects(runtime, settings.objectPrefix),
      m_bus(settings.bus, onProblem),
      m_windows(m_bus, loop, onProblem),
      m_driver(MakeDriver(m_bus, settings, onProblem)),
      m_dialUp(runtime, loop, settings.dialUp, onProblem),
      m_serial(
          runtime, [settings](std::string_view device) { return settings.TtyOf(device); },
          [onProblem](std::string_view device) {
              Report(onProblem, "the modem at " + std::string(device) + " has vanished");
          }),
      m_processes(runtime, settings.programs),
      m_sound(runtime, m_files, onProblem),
      m_speech(runtime, m_language, *m_codePage, onProblem) {}

Platform LinuxPlatform::Services(Notices& notices) {
    return {m_runtime, m_loop,   m_serial,   *m_registry, m_objects,   m_windows,
            *m_driver, m_dialUp, m_icmp,     m_files,     m_processes, m_sound,
            m_speech,  notices,  m_language, *m_codePage, m_log};
}

}  // namespace varkel
