#include "ui/terminal/headless_data.h"

#include <string>

#include "ui/terminal/headless_screens.h"

namespace varkel {

namespace {

std::string ResultText(LinkResult result) {
    if (result.status == LinkStatus::Works) return "the link works";
    switch (result.reason) {
        case LinkReason::None: return "nobody answers";
        case LinkReason::CallOrPower: return "a call has the modem, or the supply is too low";
        case LinkReason::Sim: return "the SIM cannot be used";
        case LinkReason::PoorSignal: return "the signal is poor";
        case LinkReason::NoAnswer: return "the modem does not answer";
    }
    return "";
}

}  // namespace

void HeadlessData::Run(std::string_view what) {
    if (what.empty()) {
        Print();
    } else if (what == "on") {
        m_dialog.Data().OpenNet();
    } else if (what == "off") {
        m_dialog.Data().RasHangUp();
    } else {
        m_terminal.PrintLine("[error] usage: data [on|off]");
    }
}

void HeadlessData::Print() {
    const ISP_Struct isp = m_dialog.Data().CurrentIsp();
    m_terminal.PrintLine(std::string("[data] ") + DataText(m_dialog.State().m_dataState) + ", " +
                         Utf8FromNarrow(m_page, isp.name.View()) + ", access point \"" +
                         Utf8FromNarrow(m_page, isp.szAPN.View()) + "\"");
}

void HeadlessData::Test() {
    Terminal& terminal = m_terminal;
    m_dialog.Data().PingTest(
        [&terminal](LinkResult result) { terminal.PrintLine("[data] " + ResultText(result)); });
}

}  // namespace varkel
