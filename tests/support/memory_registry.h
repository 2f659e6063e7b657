// The registry in memory.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/registry.h"
#include "platform/text.h"

namespace varkel::test {

class MemoryRegistry final : public Registry {
  public:
    using Values = std::map<std::string, RegistryValue>;

    std::unique_ptr<RegistryKey> RegCreateKeyEx(std::string_view key, bool& created) override {
        if (refuse) return nullptr;
        std::lock_guard lock(m_mutex);
        created = m_keys.try_emplace(Name(key)).second;
        return std::make_unique<Key>(*this, Name(key));
    }

    bool RegFlushKey() override {
        std::lock_guard lock(m_mutex);
        ++m_flushes;
        return true;
    }

    bool HasKey(std::string_view key) {
        std::lock_guard lock(m_mutex);
        return m_keys.contains(Name(key));
    }

    std::optional<RegistryValue> Value(std::string_view key, std::string_view name) {
        std::lock_guard lock(m_mutex);
        const auto found = m_keys.find(Name(key));
        if (found == m_keys.end()) return std::nullopt;
        const auto value = found->second.find(LowerAscii(name));
        return value == found->second.end() ? std::nullopt : std::optional(value->second);
    }

    void SetValue(std::string_view key, std::string_view name, const RegistryValue& value) {
        std::lock_guard lock(m_mutex);
        m_keys[Name(key)][LowerAscii(name)] = value;
    }

    int Flushes() {
        std::lock_guard lock(m_mutex);
        return m_flushes;
    }

    bool refuse = false;  // no key can be opened
    bool refuseWrites = false;

  private:
    struct Key final : RegistryKey {
        Key(MemoryRegistry& registry, std::string name) : m_registry(registry), m_name(std::move(name)) {}
        std::optional<RegistryValue> RegQueryValueEx(std::string_view name) override {
            return m_registry.Value(m_name, name);
        }
        bool RegSetValueEx(std::string_view name, const RegistryValue& value) override {
            if (m_registry.refuseWrites) return false;
            m_registry.SetValue(m_name, name, value);
            return true;
        }
        MemoryRegistry& m_registry;
        std::string m_name;
    };

    static std::string Name(std::string_view key) {
        while (key.ends_with('\\'))
            key.remove_suffix(1);
        return LowerAscii(key);
    }

    std::mutex m_mutex;
    std::map<std::string, Values> m_keys;
    int m_flushes = 0;
};

}  // namespace varkel::test
