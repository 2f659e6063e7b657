#include "ui/toolkit/keyboard_pages.h"

#include <algorithm>
#include <numeric>

#include "platform/text.h"

namespace varkel {

namespace {

using Action = KeyAction;

constexpr KeyboardKey latin1[] = {
    {"q"},     {"w"},     {"eéêèë"},  {"r"}, {"t"},   {"y"},
    {"uúùûü"}, {"iíìîï"}, {"oóôõòö"}, {"p"}, {"-_'"}, {"", Action::Back},
};
constexpr KeyboardKey latin2[] = {
    {"aáàâãäåæ"}, {"sß"}, {"d"}, {"f"}, {"g"}, {"h"}, {"j"}, {"k"}, {"l"}, {","}, {"."}, {"", Action::Done},
};
constexpr KeyboardKey latin3[] = {
    {"", Action::Shift},
    {"z"},
    {"x"},
    {"cç"},
    {"v"},
    {"b"},
    {"nñ"},
    {"m"},
    {" ", Action::Type, 2},
    {"", Action::Symbols},
    {"", Action::National},
};

constexpr KeyboardKey cyrillic1[] = {
    {"й"}, {"ц"}, {"у"}, {"к"}, {"её"}, {"н"}, {"г"}, {"ш"}, {"щ"}, {"з"}, {"х"}, {"", Action::Back},
};
constexpr KeyboardKey cyrillic2[] = {
    {"ф"}, {"ы"}, {"в"}, {"а"}, {"п"}, {"р"}, {"о"}, {"л"}, {"д"}, {"ж"}, {"э"}, {"", Action::Done},
};
constexpr KeyboardKey cyrillic3[] = {
    {"", Action::Shift},   {"я"}, {"ч"}, {"с"}, {"м"}, {"и"}, {"т"}, {"ьъ"}, {"б"}, {"ю"}, {" "},
    {"", Action::Symbols},
};

constexpr KeyboardKey arabic1[] = {
    {"ض"}, {"ص"}, {"ث"}, {"ق"}, {"ف"}, {"غ"}, {"ع"}, {"ه"}, {"خ"}, {"ح"}, {"ج"}, {"", Action::Back},
};
constexpr KeyboardKey arabic2[] = {
    {"ش"}, {"س"}, {"يئ"}, {"ب"}, {"ل"}, {"اأإآء"}, {"ت"}, {"ن"}, {"م"}, {"ك"}, {"ط"}, {"", Action::Done},
};
constexpr KeyboardKey arabic3[] = {
    {"ذ"},
    {"د"},
    {"ر"},
    {"ز"},
    {"وؤ"},
    {"ظ"},
    {"ة"},
    {"ى"},
    {".،؟"},
    {" "},
    {"", Action::Symbols},
    {"", Action::Latin},
};

constexpr KeyboardKey symbols1[] = {
    {"1"}, {"2"}, {"3"}, {"4"}, {"5"}, {"6"}, {"7"}, {"8"}, {"9"}, {"0"}, {"@"}, {"", Action::Back},
};
constexpr KeyboardKey symbols2[] = {
    {"+="},   {"-_~"}, {"*×"}, {"#№"}, {"([{<"}, {")]}>"},
    {"/\\|"}, {":;"},  {"&%"}, {","},  {"."},    {"", Action::Done},
};
constexpr KeyboardKey symbols3[] = {
    {"", Action::Latin},       {"!¡"}, {"?¿"}, {"'`"}, {"\"«»"}, {"$€£¥"}, {" ", Action::Type, 4},
    {"", Action::National, 2},
};

template <std::size_t Count>
constexpr bool FillsTheRow(const KeyboardKey (&row)[Count]) {
    return std::accumulate(std::begin(row), std::end(row), 0, [](int sum, const KeyboardKey& key) {
               return sum + key.columns;
           }) == keyboardColumns;
}
static_assert(FillsTheRow(latin1) && FillsTheRow(latin2) && FillsTheRow(latin3));
static_assert(FillsTheRow(cyrillic1) && FillsTheRow(cyrillic2) && FillsTheRow(cyrillic3));
static_assert(FillsTheRow(arabic1) && FillsTheRow(arabic2) && FillsTheRow(arabic3));
static_assert(FillsTheRow(symbols1) && FillsTheRow(symbols2) && FillsTheRow(symbols3));

}  // namespace

std::array<std::span<const KeyboardKey>, keyboardRows> RowsOf(KeyboardPage page) {
    switch (page) {
        case KeyboardPage::Latin: return {latin1, latin2, latin3};
        case KeyboardPage::Cyrillic: return {cyrillic1, cyrillic2, cyrillic3};
        case KeyboardPage::Arabic: return {arabic1, arabic2, arabic3};
        case KeyboardPage::Symbols: return {symbols1, symbols2, symbols3};
    }
    return {};
}

KeyboardPage NationalPage(std::string_view language) {
    return language == "arabic" ? KeyboardPage::Arabic : KeyboardPage::Cyrillic;
}

KeyboardPage FirstPage(std::string_view language) {
    const bool national = language == "arabic" || language == "russian";
    return national ? NationalPage(language) : KeyboardPage::Latin;
}

std::string_view ChoiceOf(const KeyboardKey& key, int step) {
    std::string_view rest = key.types;
    while (!rest.empty()) {
        const std::size_t bytes = FirstCharacterBytes(rest);
        if (step-- <= 0 || bytes == rest.size()) return rest.substr(0, bytes);
        rest.remove_prefix(bytes);
    }
    return {};
}

std::string UpperCase(std::string_view character) {
    std::u16string units = Utf16FromUtf8(character);
    if (units.size() != 1) return std::string(character);
    char16_t& unit = units[0];
    const bool latin = (unit >= u'a' && unit <= u'z') || (unit >= u'à' && unit <= u'þ' && unit != u'÷');
    const bool cyrillic = unit >= u'а' && unit <= u'я';
    if (latin || cyrillic) unit = static_cast<char16_t>(unit - 0x20);
    if (unit == u'ё') unit = u'Ё';
    return Utf8FromUtf16(units);
}

}  // namespace varkel
