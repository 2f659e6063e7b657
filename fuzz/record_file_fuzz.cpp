// A message box over a file of any content, and changes of any order: whole records stay byte for byte.
#include <cassert>
#include <string>
#include <vector>

#include "fuzz/input.h"
#include "stores/message_box.h"
#include "tests/support/memory_files.h"
#include "tests/support/virtual_runtime.h"

namespace {

using namespace varkel;

const std::string path = "NandFlash\\System\\Phone\\InboxMs.msm";
constexpr std::size_t recordBytes = 194;
constexpr std::size_t capacity = 150;

// What a box should hold, on its own arithmetic.
using Texts = std::vector<std::string>;

Texts WholeRecords(const std::string& file) {
    Texts texts;
    for (std::size_t at = 0; at + recordBytes <= file.size(); at += recordBytes)
        texts.push_back(file.substr(at, recordBytes));
    return texts;
}

Texts TextsOf(const MessageBox::List& list) {
    const auto* const bytes = reinterpret_cast<const char*>(list.data());
    return WholeRecords(std::string(bytes, list.size() * recordBytes));
}

std::string FilledUp(std::string_view piece) {
    std::string text(piece.substr(0, recordBytes));
    text.resize(recordBytes, '\0');
    return text;
}

// The place of the record that was seen there, or of one like it on the way to the front, or behind; -1.
std::ptrdiff_t Find(const Texts& texts, const std::string& seen, std::size_t position) {
    const auto alike = [&](std::size_t i) { return texts[i].substr(0, 193) == seen.substr(0, 193); };
    for (std::size_t i = std::min(position + 1, texts.size()); i-- > 0;) {
        if (alike(i)) return static_cast<std::ptrdiff_t>(i);
    }
    for (std::size_t i = position + 1; i < texts.size(); ++i) {
        if (alike(i)) return static_cast<std::ptrdiff_t>(i);
    }
    return -1;
}

struct Bench {
    test::VirtualRuntime runtime{1};
    test::MemoryFiles files;
    Log log{runtime, files};
    MessageBox box{files, log, SmsBox::Inbox};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static Bench bench;  // without state of its own: all of it stands in the file
    FuzzInput input(bytes, size);
    bench.files.WriteWhole(path, input.Piece());
    MessageBox::List shown = bench.box.FindSmsRecord();
    for (int change = 0; change < 40 && !input.Empty(); ++change) {
        const std::string before = bench.files.Content(path);
        Texts expected = WholeRecords(before);
        assert(TextsOf(bench.box.FindSmsRecord()) == expected);
        StoreResult result = StoreResult::NotFound;
        const std::uint8_t what = input.Byte();
        if (what % 8 == 0) {
            result = bench.box.DeleteAll();
            expected.clear();
        } else if (what % 8 == 1) {
            shown = bench.box.FindSmsRecord();
        } else if (what % 8 == 2) {
            // Somebody else's bytes at the end of the file.
            bench.files.WriteWhole(path, before + std::string(input.Piece()));
            continue;
        } else if (what % 8 <= 4) {
            const std::string text = FilledUp(input.Piece());
            SmsRecord record;
            std::memcpy(&record, text.data(), recordBytes);
            bench.files.freeBytes = what < 16 ? 0 : 1 << 20;
            result = bench.box.Append(record);
            assert(result == (what < 16 ? StoreResult::VolumeFull : StoreResult::Done));
            expected.push_back(text);
        } else {
            const std::size_t row = input.Byte();
            const bool marks = what % 8 == 5;
            result = marks ? bench.box.MarkRead(shown, row) : bench.box.Delete(shown, row);
            const std::size_t position = shown.size() - 1 - row;
            const auto at = row < shown.size() ? Find(expected, TextsOf(shown)[position], position) : -1;
            assert(result == (at < 0 ? StoreResult::NotFound : StoreResult::Done));
            if (at >= 0 && !marks) expected.erase(expected.begin() + at);
            if (at >= 0 && marks) {
                char& state = expected[static_cast<std::size_t>(at)].back();
                if (state == 'u') state = '0';
            }
        }
        const std::string after = bench.files.Content(path);
        if (result != StoreResult::Done) {
            assert(after == before);
            continue;
        }
        if (expected.size() > capacity)
            expected.erase(expected.begin(), expected.end() - static_cast<std::ptrdiff_t>(capacity));
        assert(after.size() % recordBytes == 0 && WholeRecords(after) == expected);
    }
    return 0;
}
