// What the network says to service codes, in the forms in which modules report it.
#include "modem/ussd_answer.h"

#include <gtest/gtest.h>

#include "tests/support/code_pages.h"

namespace varkel::test {
namespace {

using namespace std::string_literals;

TEST(UssdAnswer, IsDecodedByItsSchemeAndEndsWhereItsLineEnds) {
    struct Row {
        std::string line;
        int status;
        std::string text;
    };
    const Row rows[] = {
        {"+CUSD: 0,\"Balance: 42.00\",15\r\n", 0, "Balance: 42.00"},
        {"+CUSD: 1,\"1 Yes\r\n2 No\",15\r\n", 1, "1 Yes\r\n2 No"},
        {"+CUSD: 1,\"1 Yes\"\r\n", 1, "1 Yes"},
        {"+CUSD: 0,\"Hi\",15\r\n\r\n+CMTI: \"SM\",3\r\n", 0, "Hi"},
        {"+CUSD: 0,\"say \"hi\", please\",15", 0, "say \"hi\", please"},
        {"+CUSD: 2\r\n", 2, ""},
        {"+CUSD: 4\r\n", 4, ""},
        {"+CUSD: 9,\"odd\",15\r\n", 0, "odd"},
        {"+CUSD:", 0, ""},
        {"+CUSD: 0,\"", 0, ""},
        {"+CUSD: 0,\"never ends", 0, ""},
        // The default alphabet: 00 is "@", 02 "$", 11 "_", 1B 65 the euro sign.
        {"+CUSD: 0,\"a\0b \x02\x35 \x11 \x1B\x65\",15\r\n"s, 0, "a@b $5 _ €"},
        // UCS2, with small digits, with a language in front, with half a unit at the end.
        {"+CUSD: 0,\"0411043004300041\",72\r\n", 0, "БааA"},
        {"+CUSD: 0,\"4f59989d\",72\r\n", 0, "余额"},
        {"+CUSD: 0,\"7a79" + "4F59989D\",17\r\n"s, 0, "余额"},
        {"+CUSD: 0,\"004100\",72\r\n", 0, "A"},
        {"+CUSD: 0,\"plain\",72\r\n", 0, "plain"},
        // "Hello, world" packed; what only looks packed; what is too short to tell.
        {"+CUSD: 0,\"C8329BFD6681EE6F399B0C\",15\r\n", 0, "Hello, world"},
        {"+CUSD: 0,\"8613800138000500\",15\r\n", 0, "8613800138000500"},
        {"+CUSD: 0,\"BEEF12\",15\r\n", 0, "BEEF12"},
        {"+CUSD: 0,\"\xD3\xE0\xB6\xEE\",15\r\n", 0, "余额"},
    };
    for (const Row& row : rows) {
        const UssdAnswer answer = ParseUssdAnswer(row.line, CodePageNamed("GB18030"));
        EXPECT_EQ(static_cast<int>(answer.status), row.status) << row.line;
        EXPECT_EQ(answer.text, row.text) << row.line;
    }
}

}  // namespace
}  // namespace varkel::test
