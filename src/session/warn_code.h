// The warnings that the user can be shown, by the codes that the whole system uses.
#pragma once

namespace varkel {

enum class WarnCode : int {
    FailAdd = 1,
    DeleteRecordPrompt = 2,
    WritePrompt = 3,
    ExitPrompt = 4,
    NoNumber = 5,
    AddPrompt = 6,
    NotFound = 7,
    NoMessage = 8,
    DeletePrompt = 9,
    FindPrompt = 10,
    NoSignal = 11,
    Busy = 12,
    LinkNet = 13,
    LinkNetFail = 14,
    NoSim = 15,
    NetOpenFailed = 16,
    PortOpenFailed = 17,
    NetClosed = 18,
    DialupFail = 19,
    DeleteAllRecords = 20,
    FailedRunTrekon = 21,
    SimDisconnect = 22,
    PhonebookNameExists = 23,
    IspEmpty = 24,
    NumberLong = 25,
    NumberInvalid = 26,
    NameLong = 27,
    LowPower = 28,
    NandFull = 29,
    Open3gFail = 30,
    FileDestroyed = 31,
    SmsCharacter = 32,
    PhonebookFull = 33,
    AddFail = 34,
    DeleteFail = 35,
    IspChanged = 36,
    CregFail = 37,
    NoApn = 38,
    NoSimAgain = 39,
};

}  // namespace varkel
