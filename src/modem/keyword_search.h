// The words of the modem that the program knows, and the search for all of them in one pass.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace varkel {

// The index of a keyword, in the order in which their events are raised; the code that Process_event gets.
enum class Keyword : int {
    Csq,
    CannotConnect,
    RingBack,
    NoCarrier,
    Connect1200,
    NoDialtone,
    Busy,
    Cmti,
    Cmgr,
    Csca,
    Prompt,
    Cpms,
    Clip,
    Creg,
    NoAnswer,
    CallReady,
    Ccid,
    NormalEnd,
    NoSim,
    InvalidNum,
    Connect,
    ModelInitComplete,
    Cpbs,
    Cpbw,
    Cpbr,
    Cimi,
    Gsn,
    Cusd,
    Cpin,
    SimPukRequired,
    SimBusy,
    UnderVoltage,
    Disc,
    Urcind,
    Ring,
    Csmins,
    Error,
    Ok,
};

inline constexpr std::array<std::string_view, 38> keywordTable{
    "+CSQ:",
    "CANNOT CONNECT",
    "RING_BACK",
    "NO CARRIER",
    "CONNECT 1200",
    "NO DIALTONE",
    "BUSY",
    "+CMTI:",
    "+CMGR:",
    "+CSCA:",
    "\r\n> ",
    "+CPMS:",
    "+CLIP:",
    "+CREG:",
    "NO ANSWER",
    "Call Ready",
    "AT+CCID",
    "NORMAL END",
    "no sim",
    "INVALID NUM",
    "CONNECT",
    "model init complete",
    "+CPBS:",
    "+CPBW:",
    "+CPBR:",
    "+CIMI",  // the echo of AT+CIMI: its answer is bare digits
    "+GSN",   // likewise
    "+CUSD:",
    "+CPIN:",
    "SIM PUK required",
    "+CME ERROR: SIM busy",
    "UNDER-VOLTAGE WARNNING",
    "+DISC",
    "+URCIND",
    "RING",
    "+CSMINS:",
    "ERROR",
    "OK",
};

// Where each keyword occurs first.
class KeywordHits {
  public:
    bool Empty() const { return m_found == 0; }
    // Takes the found keyword of the lowest index out. Not when Empty().
    Keyword TakeFirst() {
        const auto index = std::countr_zero(m_found);
        m_found &= m_found - 1;
        return static_cast<Keyword>(index);
    }
    std::size_t Position(Keyword keyword) const { return m_position[static_cast<std::size_t>(keyword)]; }

  private:
    friend KeywordHits FindKeywords(std::string_view text);

    std::uint64_t m_found = 0;  // a bit for each keyword
    std::array<std::uint32_t, keywordTable.size()> m_position;
};

// Looks for every keyword anywhere in the text, byte for byte, overlapping ones included.
KeywordHits FindKeywords(std::string_view text);

}  // namespace varkel
