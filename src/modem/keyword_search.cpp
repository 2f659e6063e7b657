#include "modem/keyword_search.h"

#include <cstring>

namespace varkel {

namespace {

// For each of the first three characters of a keyword and each byte value, the set of keywords, one bit for
// each, that have this value there. Three look-ups and two ANDs a byte tell which keywords may begin at it;
// in ordinary traffic that is none nearly everywhere, and the few that may are compared whole.
struct BeginningTables {
    std::array<std::array<std::uint64_t, 256>, 3> at{};

    constexpr BeginningTables() {
        for (std::size_t keyword = 0; keyword < keywordTable.size(); ++keyword) {
            const std::uint64_t bit = std::uint64_t{1} << keyword;
            for (std::size_t i = 0; i < at.size(); ++i) {
                if (i < keywordTable[keyword].size()) {
                    at[i][static_cast<unsigned char>(keywordTable[keyword][i])] |= bit;
                } else {
                    // A keyword of two characters does not care for the third.
                    for (auto& set : at[i])
                        set |= bit;
                }
            }
        }
    }
};

constexpr BeginningTables beginnings;

static_assert(keywordTable.size() == static_cast<std::size_t>(Keyword::Ok) + 1);

}  // namespace

KeywordHits FindKeywords(std::string_view text) {
    KeywordHits hits;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t size = text.size();
    for (std::size_t i = 0; i + 2 <= size; ++i) {
        const unsigned char third = i + 2 < size ? bytes[i + 2] : 0;
        std::uint64_t candidates = beginnings.at[0][bytes[i]] & beginnings.at[1][bytes[i + 1]] &
                                   beginnings.at[2][third] & ~hits.m_found;
        while (candidates != 0) {
            const auto index = static_cast<std::size_t>(std::countr_zero(candidates));
            candidates &= candidates - 1;
            const std::string_view keyword = keywordTable[index];
            if (keyword.size() <= size - i && std::memcmp(bytes + i, keyword.data(), keyword.size()) == 0) {
                hits.m_found |= std::uint64_t{1} << index;
                hits.m_position[index] = static_cast<std::uint32_t>(i);
            }
        }
    }
    return hits;
}

}  // namespace varkel
