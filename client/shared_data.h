// The program's shared block as its clients read it: a copy, made under the block's mutex.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/named_objects.h"

namespace varkel::client {

// 1032 bytes, little-endian; a text ends at its first NUL.
struct SharedDataLayout {
    std::uint32_t windowHandle;      // where requests go; 0 while no program has ever run
    std::uint32_t connectionStatus;  // 1 = the data link is up, 2 = it is not
    char16_t imsi[256];
    char16_t imei[256];
};
static_assert(sizeof(SharedDataLayout) == 1032);
static_assert(offsetof(SharedDataLayout, imsi) == 8);
static_assert(offsetof(SharedDataLayout, imei) == 520);

class SharedData {
  public:
    explicit SharedData(NamedObjects& objects);

    // Nothing when the objects are missing, or another program keeps the mutex for 5 s.
    std::optional<SharedDataLayout> Read();

  private:
    const std::unique_ptr<NamedMutex> m_mutex;
    const std::unique_ptr<NamedMapping> m_mapping;
};

// What a field of the block says, in UTF-8.
std::string TextOf(const char16_t (&field)[256]);

}  // namespace varkel::client
