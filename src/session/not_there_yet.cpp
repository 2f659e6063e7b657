#include "session/not_there_yet.h"

namespace varkel {

namespace {

void SayMissing(Log& log, const char* what) {
    log.Trace("[%s]--not there yet", what);
}

}  // namespace

bool NoDataConnection::GetApn() {
    SayMissing(m_log, "GetApn");
    return true;
}

void NoDataConnection::OpenNet() {
    SayMissing(m_log, "OpenNet");
}
void NoDataConnection::RasHangUp() {
    SayMissing(m_log, "RasHangUp");
}
void NoDataConnection::OnPoorSignal() {
    SayMissing(m_log, "OnPoorSignal");
}

void NoCallControl::ReloadRecords() {
    SayMissing(m_log, "ReloadRecords");
}
void NoCallControl::OnRing() {
    SayMissing(m_log, "OnRing");
}
void NoCallControl::OnRingNo(std::string_view /*text*/) {
    SayMissing(m_log, "OnRingNo");
}
void NoCallControl::OnCallEstablished() {
    SayMissing(m_log, "OnCallEstablished");
}
void NoCallControl::OnCallHooked() {
    SayMissing(m_log, "OnCallHooked");
}
void NoCallControl::OnUssd(std::string_view /*text*/) {
    SayMissing(m_log, "OnUssd");
}

}  // namespace varkel
