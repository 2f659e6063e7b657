#include "app/linux_platform.h"

#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/board_kovex_drv.h"
#include "platform/linux/bus_kovex_drv.h"
#include "platform/linux/initial_registry.h"

namespace varkel {

namespace {

std::unique_ptr<KovexDrvApi> MakeDriver(Bus& bus, const UnitSettings& settings,
                                        const ProblemSink& onProblem) {
    if (settings.driver == DriverKind::Bus) return std::make_unique<BusKovexDrv>(bus);
    return std::make_unique<BoardKovexDrv>(settings.board, settings.TtyOf("COM7:"), onProblem);
}

std::optional<std::string> ReadText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    return std::string{std::istreambuf_iterator<char>(file), {}};
}

void ReportAll(const ProblemSink& onProblem, const std::string& path,
               const std::vector<std::string>& problems) {
    for (const std::string& problem : problems)
        Report(onProblem, path + ", " + problem);
}

// The unit's own values come first; a skin gives what is missing then.
std::unique_ptr<SqliteRegistry> OpenRegistry(const UnitSettings& settings, const Skin& skin,
                                             const ProblemSink& onProblem) {
    auto registry = SqliteRegistry::Open(settings.registry, onProblem);
    if (!registry) return registry;
    if (const std::string& path = settings.initialRegistry; !path.empty()) {
        if (const auto text = ReadText(path)) {
            ReportAll(onProblem, path, LoadInitialRegistry(*registry, *text));
        } else {
            Report(onProblem, path + " cannot be read");
        }
    }
    const std::string path = skin.directory + "/registry.txt";
    if (const auto text = ReadText(path)) {
        const std::string other = ReadText(skin.other + "/registry.txt").value_or("");
        ReportAll(onProblem, path, FollowSkin(*registry, *text, other));
    }
    return registry;
}

}  // namespace

LinuxPlatform::LinuxPlatform(LinuxRuntime& runtime, MessageLoop& loop, const UnitSettings& settings,
                             ProblemSink onProblem)
    : m_runtime(runtime),
      m_loop(loop),
      m_skin(ChooseSkin(settings.assets, settings.palette, runtime.GetLocalTime().hour)),
      m_files(settings.root, settings.assets, m_skin.directory),
      m_log(runtime, m_files),
      m_language(m_files, settings.language),
      m_codePage(m_language, settings.systemCodePage, onProblem),
      m_registry(OpenRegistry(settings, m_skin, onProblem)),
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
      m_speech(runtime, m_language, m_codePage, onProblem) {}

Platform LinuxPlatform::Services(Notices& notices) {
    return {m_runtime, m_loop,   m_serial,   *m_registry, m_objects,   m_windows,
            *m_driver, m_dialUp, m_icmp,     m_files,     m_processes, m_sound,
            m_speech,  notices,  m_language, m_codePage,  m_log};
}

}  // namespace varkel
