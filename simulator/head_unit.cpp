#include "simulator/head_unit.h"

#include "platform/text.h"

namespace varkel::sim {

const DrvEntry* HeadUnit::Find(std::string_view name) {
    for (const DrvEntry& entry : drvTable) {
        if (EqualIgnoringCase(entry.name, name)) return &entry;
    }
    return nullptr;
}

}  // namespace varkel::sim
