#include "session/modem_profile.h"

namespace varkel {

namespace {

constexpr int switchRequestOff = 0;  // the mode of +CLCK that also ends the SIM's request for its PIN

// One parameter of the module's echo canceller; number and value are the module's own.
template <int Parameter, int Value>
void SetEcho(CATChannel& at) {
    at.cmd_set_echo(Parameter, Value);
}

void UnlockByFacility(CATChannel& at, const PhCode& code) {
    Facility simLock;
    if (Facility::Parse("SC", simLock) == ValueFault::None) at.cmd_at_clck(simLock, switchRequestOff, code);
}

constexpr std::array unitGreeting{
    InitStep{[](CATChannel& at) { at.cmd_at_OriginalMsg(); }, 100},
};

constexpr std::array unitSteps{
    InitStep{[](CATChannel& at) { at.cmd_set_cscs_gsm(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_inquire_mscenter(); }, 500},
    InitStep{[](CATChannel& at) { at.cmd_set_sm(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_pdums(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_realtimems(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_clip(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_sidetone(); }, 200},
    InitStep{SetEcho<8, 512>, 500},
    InitStep{SetEcho<9, 60>, 1000},
    InitStep{SetEcho<12, 10000>, 500},
    InitStep{SetEcho<16, 18000>, 300},
    InitStep{SetEcho<17, 3000>, 300},
    InitStep{SetEcho<19, 300>, 300},
    InitStep{SetEcho<20, 300>, 300},
    InitStep{SetEcho<21, 1024>, 300},
    InitStep{SetEcho<22, 512>, 300},
    InitStep{SetEcho<23, 512>, 300},
    InitStep{SetEcho<27, 900>, 300},
    InitStep{SetEcho<28, 13000>, 300},
};

// The echo is what the answers with IMSI and IMEI are known by.
constexpr std::array standardGreeting{
    InitStep{[](CATChannel& at) { at.cmd_at_echo(); }, 100},
};

constexpr std::array standardSteps{
    InitStep{[](CATChannel& at) { at.cmd_set_cscs_gsm(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_inquire_mscenter(); }, 500},
    InitStep{[](CATChannel& at) { at.cmd_set_sm(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_pdums(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_realtimems(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_clip(); }, 200},
};

constexpr std::array beforePhonebook{
    InitStep{[](CATChannel& at) { at.cmd_set_cscs_ucs2(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_sim_mode(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_get_sim_test(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_get_sim_status(); }, 1000},
};

// A preference has no command of its own in the standard: the module then chooses.
void SelectAccess(CATChannel& at, int mode) {
    constexpr int umtsAlone = 1;
    constexpr int gsmAlone = 3;
    at.cmd_select_access(mode == umtsAlone  ? AccessTechnology::Utran
                         : mode == gsmAlone ? AccessTechnology::Gsm
                                            : AccessTechnology::Any);
}

}  // namespace

constexpr ModemProfile unitModule{
    .name = "unit",
    .ready = ReadySign::Indication,
    .greeting = unitGreeting,
    .setNetworkMode = [](CATChannel& at, int mode) { at.cmd_at_NetworkMode(mode); },
    .enterPin = UnlockByFacility,
    .enterPuk = [](CATChannel& at, const PinCode& puk, const PinCode& pin) { at.cmd_enter_pin(puk, pin); },
    .simAnswers = {"READY", "SIM PIN", "SIM PUK", "SIM PIN2", "SIM PUK2", "PH-SIM pin", "PH-NET pin"},
    .beforeRecords = unitSteps,
};

constexpr ModemProfile standardModule{
    .name = "standard",
    .ready = ReadySign::Answers,
    .greeting = standardGreeting,
    .setNetworkMode = SelectAccess,
    .enterPin = [](CATChannel& at, const PhCode& code) { at.cmd_enter_quoted_pin(code); },
    .enterPuk = [](CATChannel& at, const PinCode& puk,
                   const PinCode& pin) { at.cmd_enter_quoted_puk(puk, pin); },
    .simAnswers = {"READY", "SIM PIN", "SIM PUK", "SIM PIN2", "SIM PUK2", "PH-SIM PIN", "PH-NET PIN"},
    .beforeRecords = standardSteps,
};

std::span<const InitStep> InitStepsBeforePhonebook() {
    return beforePhonebook;
}

}  // namespace varkel
