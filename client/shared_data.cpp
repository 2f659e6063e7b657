#include "client/shared_data.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <span>

#include "platform/text.h"

namespace varkel::client {

namespace {

constexpr Ticks lockTimeout = 5000;

}  // namespace

SharedData::SharedData(NamedObjects& objects)
    : m_mutex(objects.CreateMutex("SAFE_MEM_DATA_FILE MUTEX")),
      m_mapping(objects.CreateFileMapping("SAFE_MEM_DATA_FILE", sizeof(SharedDataLayout))) {}

std::optional<SharedDataLayout> SharedData::Read() {
    if (!m_mutex || !m_mapping) return std::nullopt;
    const std::span<const std::byte> view = m_mapping->MapViewOfFile();
    if (view.size() < sizeof(SharedDataLayout)) return std::nullopt;
    if (m_mutex->Wait(lockTimeout) != WaitResult::Object0) return std::nullopt;
    SharedDataLayout copy{};
    std::memcpy(&copy, view.data(), sizeof copy);
    m_mutex->ReleaseMutex();
    return copy;
}

std::string TextOf(const char16_t (&field)[256]) {
    return Utf8FromUtf16({std::begin(field), std::find(std::begin(field), std::end(field), u'\0')});
}

}  // namespace varkel::client
