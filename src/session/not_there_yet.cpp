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

}  // namespace varkel
