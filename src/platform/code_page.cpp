#include "platform/code_page.h"

#include <algorithm>

#include "platform/text.h"

namespace varkel {

std::string_view CutNarrow(const CodePage& page, std::string_view narrow, std::size_t limit) {
    if (narrow.size() <= limit) return narrow;
    std::size_t end = 0;
    for (std::size_t next = 0; next <= limit; next += page.CharNext(narrow.substr(next)))
        end = next;
    return narrow.substr(0, end);
}

std::string Utf8FromNarrow(const CodePage& page, std::string_view narrow) {
    // No byte becomes more than one unit.
    std::u16string wide(narrow.size(), u'\0');
    wide.resize(page.MultiByteToWideChar(narrow, wide));
    return Utf8FromUtf16(wide);
}

std::string NarrowFromUtf8(const CodePage& page, std::string_view utf8, std::size_t limit) {
    const std::u16string wide = Utf16FromUtf8(utf8);
    std::string narrow(std::min(limit, wide.size() * CodePage::bytesPerUnit), '\0');
    narrow.resize(page.WideCharToMultiByte(wide, narrow));
    return narrow;
}

}  // namespace varkel
