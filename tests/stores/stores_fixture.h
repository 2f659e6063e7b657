// All stores, in memory and on the real file system, and records to put into them.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "stores/call_list.h"
#include "stores/isp_list.h"
#include "stores/message_box.h"
#include "stores/phone_book_file.h"
#include "tests/support/memory_files.h"
#include "tests/support/scratch.h"
#include "tests/support/virtual_runtime.h"

namespace varkel::test {

// Message `number` of a sequence in which each differs from all others.
inline SmsRecord Message(int number) {
    const std::string text =
        "message " + std::to_string(number) + " " + std::string(static_cast<std::size_t>(number % 100), 'x');
    return MakeSmsRecord(SmsTimeFromStamp("0903071805"), std::to_string(13800138000 + number), text,
                         SmsState::Unread);
}

inline CallRecord Call(int number) {
    return MakeCallRecord({2009, 3, 7, 8, 5, number % 60}, "", std::to_string(13800138000 + number));
}

inline PhoneBookRecord Phone(int number) {
    PhoneBookRecord record;
    record.name.Assign("name " + std::to_string(number));
    record.numbers[0].Assign(std::to_string(13800138000 + number));
    return record;
}

inline ISP_Struct Isp(int number) {
    ISP_Struct isp;
    isp.name.Assign("operator " + std::to_string(number));
    isp.operatorCode.Assign(std::to_string(46000 + number));
    return isp;
}

template <class Record>
std::string BytesOf(const std::vector<Record>& list) {
    return {reinterpret_cast<const char*>(list.data()), list.size() * sizeof(Record)};
}

// The records `first` to `last`.
template <class Record>
std::vector<Record> Several(Record (*record)(int), int first, int last) {
    std::vector<Record> list;
    for (int number = first; number <= last; ++number)
        list.push_back(record(number));
    return list;
}

struct StoresInMemory {
    VirtualRuntime runtime{1};
    MemoryFiles files;
    Log log{runtime, files};
    MessageBoxes boxes{files, log};
    CallLists calls{files, log};
    PhoneBookFile phones{files, log};
    IspList isps{files, log};
};

struct StoresOnDisk {
    ScratchDirectory scratch{"/dev/shm"};
    std::string directory = scratch / "flash/NandFlash/System/Phone";
    LinuxRuntime runtime;
    LinuxUnitFiles files{scratch / "flash", scratch / "assets"};
    Log log{runtime, files};
    MessageBoxes boxes{files, log};
    CallLists calls{files, log};
    PhoneBookFile phones{files, log};
    IspList isps{files, log};

    StoresOnDisk() { std::filesystem::create_directories(directory); }

    // Makes these files all that the directory holds.
    void Put(const std::map<std::string, std::string>& content) const {
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            std::filesystem::remove(entry);
        for (const auto& [name, bytes] : content)
            WriteFile(directory + "/" + name, bytes);
    }

    std::map<std::string, std::string> Content() const {
        std::map<std::string, std::string> content;
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            content[entry.path().filename()] = FileContent(entry.path());
        return content;
    }
};

}  // namespace varkel::test
