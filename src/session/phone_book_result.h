// How a change of a phonebook ends.
#pragma once

namespace varkel {

enum class PhoneBookResult {
    Done,
    NotFound,  // the entry that was meant is not there any more
    NameTooLong,
    NumberTooLong,
    NumberInvalid,
    VolumeFull,    // less than 1 MiB of the flash is free
    SimFull,       // no slot is free
    ModuleClosed,  // the SIM cannot be reached
    Busy,          // a call or message, or other changes, are under way: later
    Refused,       // the SIM or the flash did not take it
};

}  // namespace varkel
