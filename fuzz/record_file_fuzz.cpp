// A message box over a file of any content, and changes of any order: whole records stay byte for byte.
#include <cassert>
#include <cstring>
#include <optional>
#include <string>

#include "fuzz/input.h"
#include "tests/stores/stores_fixture.h"

namespace {

using namespace varkel;
using test::BytesOf;

const std::string path = "NandFlash\\System\\Phone\\InboxMs.msm";
constexpr std::size_t recordBytes = 194;
constexpr std::size_t capacity = 150;

// A short input makes a full box, with records that are alike.
std::string Repeated(std::string_view piece, int times) {
    std::string bytes(piece);
    for (int i = 0; i < times && bytes.size() < (capacity + 10) * recordBytes; ++i)
        bytes += piece;
    return bytes;
}

// Where the record that was seen at `position` stands, or one like it on the way to the front, or behind.
std::optional<std::size_t> Find(std::string_view records, std::string_view seen, std::size_t position) {
    const std::size_t count = records.size() / recordBytes;
    const auto alike = [&](std::size_t i) {
        return records.substr(i * recordBytes, recordBytes - 1) == seen.substr(0, recordBytes - 1);
    };
    for (std::size_t i = std::min(position + 1, count); i-- > 0;) {
        if (alike(i)) return i;
    }
    for (std::size_t i = position + 1; i < count; ++i) {
        if (alike(i)) return i;
    }
    return std::nullopt;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static test::StoresInMemory bench;  // without state of its own: all of it stands in the file
    MessageBox& box = bench.boxes.inbox;
    FuzzInput input(bytes, size);
    bench.files.WriteWhole(path, Repeated(input.Piece(), input.Byte()));
    MessageBox::List shown = box.FindSmsRecord();
    for (int change = 0; change < 5 && !input.Empty(); ++change) {
        const std::string before = bench.files.Content(path);
        // What the box should hold, on arithmetic of its own: the records' bytes in a row.
        std::string expected = before.substr(0, before.size() / recordBytes * recordBytes);
        assert(BytesOf(box.FindSmsRecord()) == expected);
        StoreResult result = StoreResult::NotFound;
        const std::uint8_t what = input.Byte();
        if (what % 8 == 0) {
            result = box.DeleteAll();
            expected.clear();
        } else if (what % 8 == 1) {
            shown = box.FindSmsRecord();
        } else if (what % 8 == 2) {
            // Somebody else's bytes at the end of the file.
            bench.files.WriteWhole(path, before + std::string(input.Piece()));
            continue;
        } else if (what % 8 <= 4) {
            const std::string_view piece = input.Piece();
            SmsRecord record;
            std::memcpy(&record, piece.data(), std::min(piece.size(), recordBytes));
            bench.files.freeBytes = what < 16 ? 0 : 1 << 20;
            result = box.WriteSmsRecord(record);
            assert(result == (what < 16 ? StoreResult::VolumeFull : StoreResult::Done));
            expected += BytesOf(std::vector{record});
        } else {
            const std::size_t row = input.Byte();
            const bool marks = what % 8 == 5;
            result = marks ? box.MarkRead(shown, row) : box.Delete(shown, row);
            const std::size_t position = shown.size() - 1 - row;
            const auto at = row < shown.size()
                                ? Find(expected, BytesOf(std::vector{shown[position]}), position)
                                : std::nullopt;
            assert(result == (at ? StoreResult::Done : StoreResult::NotFound));
            if (at && !marks) expected.erase(*at * recordBytes, recordBytes);
            if (at && marks) {
                char& state = expected[(*at + 1) * recordBytes - 1];
                if (state == 'u') state = '0';
            }
        }
        const std::string after = bench.files.Content(path);
        if (result != StoreResult::Done) {
            assert(after == before);
            continue;
        }
        if (expected.size() > capacity * recordBytes)
            expected.erase(0, expected.size() - capacity * recordBytes);
        assert(after == expected);
    }
    return 0;
}
