#include "client/send_message.h"

#include <optional>
#include <string_view>
#include <vector>

#include "client/answer_event.h"
#include "client/registry_access.h"
#include "platform/linux/display_code_page.h"
#include "platform/text.h"

namespace varkel::client {

namespace {

constexpr std::uint32_t sendMessage = 0;  // dwData
constexpr std::size_t numberAt = 32;      // bytes
constexpr std::size_t textAt = 64;
constexpr std::size_t longestNumber = (textAt - numberAt) / 2;  // units; a full field needs no NUL
constexpr std::size_t longestText = 121;                        // bytes of the display code page
constexpr std::size_t mostUnits = 115;                          // of one message

// The number without the separators that people write; nothing when it is none.
std::optional<std::string> PlainNumber(std::string_view number) {
    std::string plain;
    for (const char c : number) {
        const bool digit = c >= '0' && c <= '9';
        const bool separator = std::string_view("()-./ ").find(c) != std::string_view::npos;
        if (!digit && !separator && !(c == '+' && plain.empty())) return std::nullopt;
        if (!separator) plain += c;
    }
    const bool fits = plain.size() <= longestNumber && plain.find_first_of("0123456789") != std::string::npos;
    return fits ? std::optional(plain) : std::nullopt;
}

// The program would cut the text and put "?" for what its code page does not hold.
bool Survives(const CodePage& page, const std::string& text) {
    return Utf16FromUtf8(text).size() <= mostUnits &&
           Utf8FromNarrow(page, NarrowFromUtf8(page, text, longestText)) == text;
}

void Put(std::vector<std::byte>& block, std::size_t at, std::string_view utf8) {
    const std::u16string units = Utf16FromUtf8(utf8);
    block.resize(at + (units.size() + 1) * 2);
    for (const char16_t unit : units) {
        block[at++] = static_cast<std::byte>(unit & 0xFF);
        block[at++] = static_cast<std::byte>(unit >> 8);
    }
}

}  // namespace

ExitCode SendShortMessage(PhoneProgram& program, const UnitSettings& settings, const std::string& number,
                          const std::string& text, Ticks timeout) {
    const auto plain = PlainNumber(number);
    if (!plain) return Fail(ExitCode::Usage, "not a number of at most 15 digits: " + number);
    if (!Survives(
            *CodePageOf(ReadLanguage(settings.registry, settings.language), settings.systemCodePage, {}),
            text)) {
        return Fail(
            ExitCode::Usage,
            "a message holds 115 characters and 121 bytes of the unit's code page; this one does not fit");
    }
    // The program would fail the message at once, which leaves no sign.
    if (ReadRegistryValue(settings.registry, "GPRS\\OPENFLAG", "m_GprsOpenFlag") != "1")
        return Fail(ExitCode::Failed, "the module is not open");
    std::vector<std::byte> block;
    Put(block, numberAt, *plain);
    Put(block, textAt, text);

    AnswerEvent result(program, "SendSM_SUS", timeout);
    if (const ExitCode code = result.Prepare(); code != ExitCode::Ok) return code;
    if (program.SendCopyData(sendMessage, block).value_or(0) == 0)
        return Fail(ExitCode::Failed, "varkel does not take the message");
    if (const ExitCode code = result.Await(); code != ExitCode::Ok) return code;
    return PrintLine("sent") ? ExitCode::Ok : ExitCode::Failed;
}

}  // namespace varkel::client
