// Turns the table of operators into the list that a unit comes with.
//
//   make_isp_list TABLE LIST
//
// A line that says nothing sure stops it, with its number: the list is data that nobody looks at again.
#include <algorithm>
#include <cctype>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "stores/isp_record.h"

namespace {

using varkel::ISP_Struct;

constexpr std::size_t columns = 7;
constexpr std::string_view anyImsi = "any";

std::string Trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(Trimmed(part));
    return parts;
}

class Table {
  public:
    // Empty, or what is wrong with the line.
    std::string Add(const std::string& line) {
        const std::vector<std::string> fields = Split(line, '|');
        if (fields.size() != columns) return "not " + std::to_string(columns) + " columns";
        const std::string &country = fields[0], &name = fields[1], &accessPoint = fields[3];
        if (name.empty() || accessPoint.empty() || fields[6].empty())
            return "an operator needs a name, an access point and a dial string";
        ISP_Struct isp;
        const bool fits = isp.name.Assign(country.empty() ? name : name + " (" + country + ")") &&
                          isp.szAPN.Assign(accessPoint) && isp.userName.Assign(fields[4]) &&
                          isp.password.Assign(fields[5]) && isp.dialNumber.Assign(fields[6]);
        if (!fits) return "a text of more than 128 characters";

        std::istringstream codes(fields[2]);
        bool hasCode = false;
        for (std::string code; codes >> code; hasCode = true) {
            if (std::string fault = AddRecord(isp, code); !fault.empty()) return fault;
        }
        return hasCode ? "" : "no operator code";
    }

    bool ServesEverybody() const { return !m_list.empty() && m_list.back().operatorCode.Empty(); }
    const std::vector<ISP_Struct>& List() const { return m_list; }

  private:
    std::string AddRecord(ISP_Struct isp, const std::string& code) {
        const bool digits =
            std::all_of(code.begin(), code.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
        if (code != anyImsi && (!digits || (code.size() != 5 && code.size() != 6)))
            return "\"" + code + "\" is no MCC with its MNC";
        const std::string prefix = code == anyImsi ? "" : code;
        for (const ISP_Struct& earlier : m_list) {
            if (Serves(earlier, prefix))
                return "\"" + code + "\" is reached by " + std::string(earlier.name.View()) + " before";
        }
        isp.operatorCode.Assign(prefix);
        m_list.push_back(isp);
        return {};
    }

    std::vector<ISP_Struct> m_list;
};

// In the unit's text code page, whichever that is.
bool IsPlain(const std::string& line) {
    return std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool Read(const char* path, Table& table) {
    std::ifstream file(path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (Trimmed(line).empty() || line.front() == '#') continue;
        const std::string fault = IsPlain(line) ? table.Add(line) : "a character that is not ASCII";
        if (fault.empty()) continue;
        std::cerr << path << ":" << number << ": " << fault << "\n";
        return false;
    }
    if (!table.ServesEverybody()) std::cerr << path << ": the last line does not serve \"any\" IMSI\n";
    return table.ServesEverybody();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_isp_list TABLE LIST\n";
        return 2;
    }
    Table table;
    if (!Read(argv[1], table)) return 1;
    std::ofstream list(argv[2], std::ios::binary);
    for (const ISP_Struct& isp : table.List())
        list.write(reinterpret_cast<const char*>(&isp), sizeof isp);
    list.close();
    if (!list) std::cerr << argv[2] << " cannot be written\n";
    return list ? 0 : 1;
}
