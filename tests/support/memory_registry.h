// The registry in memory.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "platform/guarded.h"
#include "platform/registry.h"
#include "platform/text.h"

namespace varkel::test {

class MemoryRegistry final : public Registry {
  public:
    std::unique_ptr<RegistryKey> RegCreateKeyEx(std::string_view key, bool& created) override {
        if (refuse) return nullptr;
        created = m_keys.With([&](Keys& keys) { return keys.try_emplace(Name(key)).second; });
        return std::make_unique<Key>(*this, Name(key));
    }

    bool RegFlushKey() override {
        ++flushes;
        return true;
    }

    std::optional<RegistryValue> Value(std::string_view key, std::string_view name) {
        return m_keys.With([&](Keys& keys) -> std::optional<RegistryValue> {
            const auto found = keys.find(Name(key));
            if (found == keys.end() || !found->second.contains(LowerAscii(name))) return std::nullopt;
            return found->second[LowerAscii(name)];
        });
    }

    void SetValue(std::string_view key, std::string_view name, const RegistryValue& value) {
        m_keys.With([&](Keys& keys) { keys[Name(key)][LowerAscii(name)] = value; });
    }

    std::atomic<int> flushes = 0;
    bool refuse = false;  // no key can be opened
    bool refuseWrites = false;

  private:
    using Keys = std::map<std::string, std::map<std::string, RegistryValue>>;

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

    Guarded<Keys> m_keys;
};

}  // namespace varkel::test
