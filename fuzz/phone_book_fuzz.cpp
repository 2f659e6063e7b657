// A phonebook file of any content: what is found in it, and changes that leave all other records as they are.
// The input is the file and a sequence of {what, which entry, length, text}.
#include <cassert>
#include <cstring>

#include "fuzz/input.h"
#include "tests/stores/stores_fixture.h"

namespace {

using namespace varkel;

const std::string path = "NandFlash\\System\\Phone\\phonebook.msm";
constexpr std::size_t recordBytes = 300;

// On its own arithmetic: whether a field of the file's bytes is this text.
bool FieldIs(const std::string& file, std::size_t record, std::size_t field, std::string_view text) {
    const char* const start = file.data() + record * recordBytes + field * 60;
    return text == std::string_view(start, strnlen(start, 60));
}

bool Found(const std::string& file, std::string_view number) {
    for (std::size_t record = 0; record < file.size() / recordBytes; ++record) {
        for (std::size_t field = 1; field <= 4; ++field) {
            if (FieldIs(file, record, field, number)) return !number.empty();
        }
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static test::StoresInMemory bench;
    FuzzInput input(bytes, size);
    bench.files.WriteWhole(path, input.Piece());
    for (int change = 0; change < 12 && !input.Empty(); ++change) {
        const std::uint8_t what = input.Byte();
        const std::size_t index = input.Byte();
        const std::string_view text = input.Piece();
        std::string expected = bench.files.Content(path);
        assert(bench.phones.FindName(text).has_value() == Found(expected, text));
        const PhoneBookFile::List shown = bench.phones.Load();
        PhoneBookRecord record;
        std::memcpy(&record, text.data(), std::min(text.size(), recordBytes));
        const std::string written(reinterpret_cast<const char*>(&record), recordBytes);
        if (what % 3 == 0) {
            assert(bench.phones.Add(record) == StoreResult::Done);
            expected.resize(shown.size() * recordBytes);
            expected += written;
        } else if (index < shown.size()) {
            const bool changes = what % 3 == 1;
            const StoreResult result = changes ? bench.phones.Change(shown[index], index, record)
                                               : bench.phones.Delete(shown[index], index);
            assert(result == StoreResult::Done);
            expected.resize(shown.size() * recordBytes);
            expected.replace(index * recordBytes, recordBytes, changes ? written : "");
        }
        // A change to the same bytes need not be written, so that a torn tail may still be there.
        assert(bench.files.Content(path).substr(0, expected.size()) == expected);
    }
    return 0;
}
