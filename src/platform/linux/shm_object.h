// A file in shared memory with a name, mapped.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace varkel {

// Owns the mapping; the object itself stays under its name until somebody removes it.
class ShmObject {
  public:
    // Opens the object, or makes one of `bytes` zeroes that `initialise` has filled before anybody can open
    // it. The object must be a plain file of this user alone and hold at least `bytes`: another one is not
    // trusted. Null on a failure, with errno set.
    static std::unique_ptr<ShmObject> Open(const std::string& name, std::size_t bytes,
                                           const std::function<void(std::span<std::byte>)>& initialise);
    ~ShmObject();
    ShmObject(const ShmObject&) = delete;
    ShmObject& operator=(const ShmObject&) = delete;

    std::span<std::byte> Bytes() const { return m_bytes; }

    // Removes every object whose name begins with `prefix` and a dot. Programs that have one open keep it.
    static void RemoveAll(const std::string& prefix);

  private:
    explicit ShmObject(std::span<std::byte> bytes) : m_bytes(bytes) {}

    const std::span<std::byte> m_bytes;
};

}  // namespace varkel
