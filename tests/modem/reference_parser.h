// The rules of the receive parser, written down as plainly as possible: a search from the start for every
// keyword.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "modem/keyword_search.h"

namespace varkel::test {

// Writes events down as ChannelBench does, for a channel with no one-shot set, no client and no tip window.
class ReferenceParser {
  public:
    void ProcessRcv(std::string_view chunk) {
        if (chunk.empty()) return;
        bool ringAllowed = true;
        for (int i = 0;; ++i) {
            if (m_pending >= 25 && m_pending <= 27) {
                m_held.append(chunk);
                Raise(m_pending, m_held, ringAllowed);
                m_pending = 0;
                return;
            }
            while (i < 38 && chunk.find(keywordTable[static_cast<std::size_t>(i)]) == chunk.npos)
                ++i;
            if (i == 38) return;
            const std::string_view text = chunk.substr(chunk.find(keywordTable[static_cast<std::size_t>(i)]));
            if (i == 37) {
                m_pending = 0;
                Raise(37, chunk, ringAllowed);
            } else if (i >= 25 && i <= 27) {
                if (!Complete(i, text)) {
                    m_held = text;
                    m_pending = i;
                    return;
                }
                Raise(i, text, ringAllowed);
            } else {
                Raise(i, text, ringAllowed);
                m_pending = i;
            }
        }
    }

    std::vector<std::string> events;

  private:
    static long Position(std::string_view text, std::string_view part) {
        const std::size_t at = text.find(part);
        return at == text.npos ? -1 : static_cast<long>(at);
    }

    static bool Complete(int index, std::string_view text) {
        if (index == 27) return Position(text, ",\"") * Position(text, "\",") > 0;
        return Position(text, "\r\nOK") > 0;
    }

    void Raise(int index, std::string_view text, bool& ringAllowed) {
        static const std::map<int, const char*> names{
            {0, "OnSignalStatus"},  {7, "OnMsComeIn"},       {8, "OnMsContent"},
            {9, "OnMsCenterNo"},    {11, "OnCpms"},          {12, "OnRingNo"},
            {13, "OnCreg"},         {15, "OnCallReady"},     {21, "OnModelInitComplete"},
            {22, "OnPhoneBookNum"}, {23, "OnPhoneBookTest"}, {24, "OnPhoneBookContent"},
            {25, "OnCimi"},         {26, "OnGsn"},           {27, "OnUssd"},
            {28, "OnCpin"},         {32, "OnDisc"},          {33, "OnUrcInd"},
            {35, "OnSimInserted"}};
        switch (index) {
            case 1:
            case 3:
            case 6:
            case 14:
            case 17:
            case 19: events.push_back("OnCallHooked()"); break;
            case 2: ringAllowed = false; break;
            case 5: events.push_back("OnAtResult(11)"); break;
            case 10:
                events.push_back("OnSendState(1)");
                events.push_back("OnSendMsSuc()");
                break;
            case 18: events.push_back("OnNoSim()"); break;
            case 20: events.push_back("OnAtResult(3)"); break;
            case 34:
                if (ringAllowed) events.push_back("OnRing(" + std::string(text) + ")");
                break;
            case 36:
            case 37: events.push_back("OnAtResult(1)"); break;
            default:
                if (const auto name = names.find(index); name != names.end())
                    events.push_back(std::string(name->second) + "(" + std::string(text) + ")");
        }
    }

    int m_pending = 0;
    std::string m_held;
};

}  // namespace varkel::test
