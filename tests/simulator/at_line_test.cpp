#include "simulator/at_line.h"

#include <gtest/gtest.h>

namespace varkel::sim {
namespace {

// One line of text for a parsed line: name, form, arguments, quoted ones in single quotes.
std::string Shown(std::string_view line) {
    const auto commands = ParseAtLine(line);
    if (!commands) return "malformed";
    std::string text;
    for (const AtCommand& command : *commands) {
        constexpr std::string_view forms[] = {"!", "?", "=?", "="};
        text += (text.empty() ? "" : " ; ") + command.name;
        text += forms[static_cast<std::size_t>(command.form)];
        for (const AtArgument& argument : command.arguments)
            text += argument.quoted ? " '" + argument.text + "'" : " " + argument.text + ".";
    }
    return text;
}

TEST(AtLine, IsTakenApartAsTheStandardSays) {
    struct Case {
        std::string_view line;
        std::string_view parsed;
    };
    const Case cases[] = {
        {"", ""},
        {"+CSQ", "+CSQ!"},
        {"+csq", "+CSQ!"},
        {"+CPIN?", "+CPIN?"},
        {"+CPBW=?", "+CPBW=?"},
        {"+CPBS = \"SM\"", "+CPBS= 'SM'"},
        {" + CSQ", "malformed"},
        {"+CLCK=\"SC\",0,\"1234\"", "+CLCK= 'SC' 0. '1234'"},
        {"+CPIN=12345678,1234", "+CPIN= 12345678. 1234."},
        {"+CMGL=", "+CMGL= ."},
        {"+CPBW=,\"1\",129,\"a;b,c\"", "+CPBW= . '1' 129. 'a;b,c'"},
        {"E0", "E! 0."},
        {"e0v1&F", "E! 0. ; V! 1. ; &F!"},
        {"E0+CSQ;+CREG?;H", "E! 0. ; +CSQ! ; +CREG? ; H!"},
        {"D+8613800138000;", "D! +8613800138000;."},
        {"D*99#", "D! *99#."},
        {"+CUSD=1,\"*100#\",15", "+CUSD= 1. '*100#' 15."},
        {"+VTS=#", "+VTS= #."},
        {"+CMGR=1\"", "malformed"},
        {"+CUSD=1,\"open", "malformed"},
        {"+CSCS=\"GSM\"x", "malformed"},
        {"+CSQ?x", "malformed"},
        {"+", "malformed"},
        {"&", "malformed"},
        {"1", "malformed"},
        {"+CSQ\x01", "malformed"},
        {"+X=1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17", "malformed"},
        {"EEEEEEEEEEEEEEEEE", "malformed"},
    };
    for (const Case& each : cases)
        EXPECT_EQ(Shown(each.line), each.parsed) << each.line;
}

}  // namespace
}  // namespace varkel::sim
