// The SIM's phonebook, as the open sequence uses it.
#pragma once

#include <string_view>

namespace varkel {

class SimPhonebook {
  public:
    virtual ~SimPhonebook() = default;

    // Reads all entries into memory in blocks of ten. Takes at most 2000 ms a block; open thread.
    virtual void Read() = 0;
    // The answers to "AT+CPBS?", "AT+CPBW=?" and "AT+CPBR". Read thread.
    virtual void OnPhoneBookNum(std::string_view text) = 0;
    virtual void OnPhoneBookTest(std::string_view text) = 0;
    virtual void OnPhoneBookContent(std::string_view text) = 0;
};

}  // namespace varkel
