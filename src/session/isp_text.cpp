#include "session/isp_text.h"

#include <algorithm>
#include <array>

#include "modem/at_values.h"
#include "platform/text.h"

namespace varkel {

namespace {

using Field = FixedText<128> ISP_Struct::*;
struct Pair {
    std::string IspText::*text;
    Field field;
    WarnCode tooLong;
};
constexpr std::array<Pair, 6> pairs{{
    {&IspText::name, &ISP_Struct::name, WarnCode::NameLong},
    {&IspText::userName, &ISP_Struct::userName, WarnCode::NameLong},
    {&IspText::password, &ISP_Struct::password, WarnCode::NameLong},
    {&IspText::accessPoint, &ISP_Struct::szAPN, WarnCode::NameLong},
    {&IspText::dialNumber, &ISP_Struct::dialNumber, WarnCode::NumberLong},
    {&IspText::operatorCode, &ISP_Struct::operatorCode, WarnCode::NumberLong},
}};

// It is compared with an IMSI, which has at most 15 digits (3GPP TS 23.003, 2.2).
constexpr std::size_t longestCode = 15;

std::optional<IspFault> Check(const IspText& text) {
    if (text.name.empty()) return IspFault{&IspText::name, WarnCode::IspEmpty};
    if (text.accessPoint.empty()) return IspFault{&IspText::accessPoint, WarnCode::IspEmpty};
    ApnName apn;
    if (const ValueFault fault = ApnName::Parse(text.accessPoint, apn); fault != ValueFault::None)
        return IspFault{&IspText::accessPoint, static_cast<WarnCode>(fault)};
    DialString number;
    if (!text.dialNumber.empty() && DialString::Parse(text.dialNumber, number) == ValueFault::Invalid)
        return IspFault{&IspText::dialNumber, WarnCode::NumberInvalid};
    if (!std::all_of(text.operatorCode.begin(), text.operatorCode.end(), IsDigit))
        return IspFault{&IspText::operatorCode, WarnCode::NumberInvalid};
    if (text.operatorCode.size() > longestCode) return IspFault{&IspText::operatorCode, WarnCode::NumberLong};
    return std::nullopt;
}

}  // namespace

IspText IspTextOf(const CodePage& page, const ISP_Struct& isp) {
    IspText text;
    for (const Pair& pair : pairs)
        text.*pair.text = Utf8FromNarrow(page, (isp.*pair.field).View());
    return text;
}

std::optional<IspFault> MakeIsp(const CodePage& page, const IspText& text, ISP_Struct& isp) {
    IspText trimmed;
    for (const Pair& pair : pairs) {
        // A blank may be part of a password.
        const bool secret = pair.text == &IspText::password;
        trimmed.*pair.text = secret ? text.*pair.text : std::string(Trimmed(text.*pair.text));
    }
    if (const auto fault = Check(trimmed)) return fault;
    ISP_Struct made{};
    for (const Pair& pair : pairs) {
        const std::string narrow = NarrowFromUtf8(page, trimmed.*pair.text);
        if (narrow.size() >= sizeof(made.*pair.field)) return IspFault{pair.text, pair.tooLong};
        (made.*pair.field).Assign(narrow);
    }
    isp = made;
    return std::nullopt;
}

}  // namespace varkel
