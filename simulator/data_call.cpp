#include "simulator/data_call.h"

#include "simulator/bytes.h"
#include "simulator/modem.h"

namespace varkel::sim {

namespace {

constexpr int context = 1;

// pppd's exit codes.
constexpr int closedByPeer = 0;
constexpr int toldToEnd = 5;
constexpr int scriptFailed = 8;
constexpr int hungUp = 16;
constexpr int refused = 19;

// This machine's own addresses stand for the network: one that answers, and one that never does, as the
// address of all hosts.
constexpr std::string_view answeringPeer = "127.0.0.1";
constexpr std::string_view deafPeer = "127.255.255.255";

}  // namespace

void DataCall::SetMood(DataMood mood) {
    const bool changed = mood != m_mood;
    m_mood = mood;
    if (changed && m_phase == DataPhase::Up) PrintAddresses();
}

void DataCall::Dial(std::string_view user, Millis now) {
    Abandon();
    m_phase = DataPhase::Dialling;
    m_user = user;
    Say("data call" + (user.empty() ? std::string() : " of user \"" + Visible(user, 40) + "\""));
    if (m_mood == DataMood::Silent) return;
    After(m_modem.Config().times.data, now, [this](Millis then) { Connect(then); });
}

std::string_view DataCall::Obstacle() const {
    if (!m_modem.Reachable()) return "the module is out of reach";
    const int signal = m_modem.Network().Signal();
    if (signal == 0 || signal == Radio::unknownSignal) return "there is no signal";
    const auto& contexts = m_modem.Settings().contexts;
    const auto defined = contexts.find(context);
    const bool named = defined != contexts.end() && !defined->second.accessPoint.empty();
    return named ? "" : "no access point was set";
}

void DataCall::Connect(Millis now) {
    const std::string_view obstacle = Obstacle();
    if (!obstacle.empty()) return Lose(obstacle);
    constexpr Millis negotiation = 300;
    m_phase = DataPhase::Negotiating;
    Print("Serial connection established.");
    Print("Using interface ppp0");
    Print("Connect: ppp0 <--> the modem");
    After(negotiation, now, [this](Millis then) { Authenticate(then); });
}

void DataCall::Authenticate(Millis now) {
    if (m_mood == DataMood::Refuse) {
        Say("data call fails: user and password are refused");
        Print("PAP authentication failed");
        Print("Connection terminated.");
        return Finish(refused);
    }
    constexpr Millis addresses = 200;
    if (!m_user.empty()) Print("PAP authentication succeeded");
    After(addresses, now, [this](Millis) { Establish(); });
}

void DataCall::Establish() {
    m_phase = DataPhase::Up;
    Say("data link is up, access point " + Visible(m_modem.Settings().contexts[context].accessPoint, 40));
    PrintAddresses();
}

void DataCall::PrintAddresses() const {
    Print("local  IP address 10.20.30.40");
    Print("remote IP address " + std::string(m_mood == DataMood::Deaf ? deafPeer : answeringPeer));
}

void DataCall::HangUp() {
    if (m_phase == DataPhase::Idle) return;
    Say("the data call is hung up");
    Print("Terminating on signal 15");
    if (m_phase != DataPhase::Dialling) Print("Connection terminated.");
    Finish(toldToEnd);
}

void DataCall::Abandon() {
    if (m_phase == DataPhase::Idle) return;
    Say("the data call ends: its program is gone");
    m_agenda.Drop(Topic::Data);
    m_phase = DataPhase::Idle;
}

bool DataCall::Drop() {
    if (m_phase == DataPhase::Idle) return false;
    if (m_phase == DataPhase::Dialling) {
        Lose("the network does not put it through");
        return true;
    }
    Say("the network ends the data call");
    Print("LCP terminated by peer");
    Print("Connection terminated.");
    Finish(closedByPeer);
    return true;
}

void DataCall::Lose(std::string_view why) {
    if (m_phase == DataPhase::Idle) return;
    const bool dialling = m_phase == DataPhase::Dialling;
    Say((dialling ? "data call fails: " : "the data call ends: ") + std::string(why));
    if (!dialling) Print("Modem hangup");
    Print(dialling ? "Connect script failed" : "Connection terminated.");
    Finish(dialling ? scriptFailed : hungUp);
}

void DataCall::Finish(int code) {
    m_agenda.Drop(Topic::Data);
    m_phase = DataPhase::Idle;
    if (m_modem.Hooks().dialEnd) m_modem.Hooks().dialEnd(code);
}

void DataCall::After(Millis time, Millis now, Agenda::Work work) {
    m_agenda.At(now + time, Topic::Data, std::move(work));
}

void DataCall::Print(std::string_view line) const {
    if (m_modem.Hooks().dialLine) m_modem.Hooks().dialLine(line);
}

void DataCall::Say(std::string_view text) const {
    if (m_modem.Hooks().network) m_modem.Hooks().network(text);
}

}  // namespace varkel::sim
