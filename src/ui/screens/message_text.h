// What the message screens show of a record.
#pragma once

#include <string>

#include "platform/code_page.h"
#include "stores/sms_record.h"

namespace varkel {

// A record may come from anywhere: what is no character is shown as such, and lines end with line feeds only.
inline std::string ShownText(const CodePage& page, std::string_view narrow) {
    std::string text = Utf8FromNarrow(page, narrow);
    std::erase(text, '\r');
    return text;
}

// For a row: in one line.
inline std::string ShownLine(const CodePage& page, std::string_view narrow) {
    std::string text = ShownText(page, narrow);
    for (char& character : text) {
        if (character == '\n' || character == '\t') character = ' ';
    }
    return text;
}

}  // namespace varkel
