// Message boxes on the real file system, and messages to put into them.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/linux_runtime.h"
#include "platform/linux/linux_unit_files.h"
#include "stores/message_box.h"
#include "tests/support/scratch.h"

namespace varkel::test {

// Message `number` of a sequence in which each differs from all others.
inline SmsRecord Message(int number, SmsState state = SmsState::Unread) {
    const std::string text =
        "message " + std::to_string(number) + " " + std::string(static_cast<std::size_t>(number % 100), 'x');
    return MakeSmsRecord(SmsTimeFromStamp("0903071805"), std::to_string(13800138000 + number), text, state);
}

inline std::string BytesOf(const MessageBox::List& list) {
    return {reinterpret_cast<const char*>(list.data()), list.size() * sizeof(SmsRecord)};
}

// Messages `first` to `last`.
inline MessageBox::List Messages(int first, int last) {
    MessageBox::List list;
    for (int number = first; number <= last; ++number)
        list.push_back(Message(number));
    return list;
}

struct BoxesOnDisk {
    ScratchDirectory scratch{"/dev/shm"};
    std::string directory = scratch / "flash/NandFlash/System/Phone";
    LinuxRuntime runtime;
    LinuxUnitFiles files{scratch / "flash", scratch / "assets"};
    Log log{runtime, files};
    MessageBoxes boxes{files, log};

    BoxesOnDisk() { std::filesystem::create_directories(directory); }

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
