#include "session/init_sequence.h"

#include <array>

namespace varkel {

namespace {

// One parameter of the module's echo canceller; number and value are the module's own.
template <int Parameter, int Value>
void SetEcho(CATChannel& at) {
    at.cmd_set_echo(Parameter, Value);
}

constexpr std::array beforeRecords{
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

constexpr std::array beforePhonebook{
    InitStep{[](CATChannel& at) { at.cmd_set_cscs_ucs2(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_set_sim_mode(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_get_sim_test(); }, 200},
    InitStep{[](CATChannel& at) { at.cmd_get_sim_status(); }, 1000},
};

}  // namespace

std::span<const InitStep> InitStepsBeforeRecords() {
    return beforeRecords;
}
std::span<const InitStep> InitStepsBeforePhonebook() {
    return beforePhonebook;
}

}  // namespace varkel
