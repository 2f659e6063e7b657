// The registry in an SQLite file, which other programs of the unit read and write at the same time.
//
// One table holds everything: registry(key, name, type, value). A key without values is a row with an empty
// name and type 0; every other row is a value too.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/problem_sink.h"
#include "platform/registry.h"

namespace varkel {

struct RegistryEntry {
    std::string key;
    std::string name;
    RegistryValue value;
};

// A call waits at most a second for another process that writes. The file belongs to the user alone.
class SqliteRegistry final : public Registry {
  public:
    // Opens the file, or makes it and its directory. A damaged file is set aside as "<path>.damaged", over an
    // older one, and a new one begun. Null when no file can be opened or made; `onProblem` has heard why.
    static std::unique_ptr<SqliteRegistry> Open(const std::string& path, ProblemSink onProblem);
    // Keys that are still open stay usable.
    ~SqliteRegistry() override;

    std::unique_ptr<RegistryKey> RegCreateKeyEx(std::string_view key, bool& created) override;
    bool RegFlushKey() override;

    // The values of `key` and of the keys below it, or of all keys when it is empty, sorted by key and name;
    // at most `listLimit`.
    std::vector<RegistryEntry> List(std::string_view key = {});

    static constexpr std::size_t listLimit = 10'000;

    class File;  // shared with the open keys

  private:
    explicit SqliteRegistry(std::shared_ptr<File> file);

    const std::shared_ptr<File> m_file;
};

}  // namespace varkel
