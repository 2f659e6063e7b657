// Unit files of any content: the settings, the driver's section and the initial registry's text.
#include <cassert>

#include "platform/linux/initial_registry.h"
#include "platform/linux/unit_settings.h"
#include "tests/support/memory_registry.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using namespace varkel;
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    const UnitSettings settings = ParseUnitSettings(text, "/unit");
    assert(!settings.root.empty() && settings.root.front() == '/');
    for (const auto& [path, command] : settings.programs)
        assert(!command.empty());
    test::MemoryRegistry registry;
    (void)LoadInitialRegistry(registry, text);
    return 0;
}
