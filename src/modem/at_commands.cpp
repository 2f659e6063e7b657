// The sending side of the AT channel.
#include <algorithm>
#include <cassert>
#include <cstdarg>
#include <cstdio>

#include "modem/at_channel.h"

namespace varkel {

namespace {

// A command line in a buffer of its stated size, filled with zeros. The types of the values make sure that it
// fits.
template <std::size_t Size>
class CommandLine {
  public:
    explicit CommandLine(const char* format, ...) __attribute__((format(printf, 2, 3))) {
        std::va_list values;
        va_start(values, format);
        const int length = std::vsnprintf(m_bytes, Size, format, values);
        va_end(values);
        assert(length > 0 && static_cast<std::size_t>(length) < Size);
        m_length = static_cast<std::size_t>(length);
    }
    std::string_view View() const { return {m_bytes, m_length}; }

  private:
    char m_bytes[Size] = {};
    std::size_t m_length = 0;
};

constexpr char ctrlZ = 0x1A;
constexpr std::string_view escape = "\x1B";
// A final result that has not come by then never will.
constexpr Ticks answerForgotten = 5000;

// The procedures that change or unblock a PIN carry codes (3GPP TS 22.030, 6.6).
bool ChangesCode(std::string_view dialString) {
    return dialString.starts_with("**04") || dialString.starts_with("**05");
}

}  // namespace

bool IsServiceCode(std::string_view number) {
    if (number.empty()) return false;
    if (number.front() == '*' || number.front() == '#') return number.back() == '#';
    return number.front() == '7' && number.size() == 2;
}

CATChannel::CATChannel(Runtime& runtime, KovexDrvApi& driver, WindowMessages& windows, Log& log)
    : m_runtime(runtime), m_driver(driver), m_windows(windows), m_log(log), m_secrets(log) {}

void CATChannel::Attach(const CCESeries& link, void* owner) {
    m_link.Set(link.Fields());
    m_owner = owner;
    m_unanswered = 0;
    m_promptAwaited = false;
    m_escapeDue = false;
}

bool CATChannel::AnswerOutstanding(Ticks memory) const {
    return m_unanswered > 0 && TicksSince(m_runtime.GetTickCount(), m_lastCommand) < memory;
}

void CATChannel::SendATCommond(std::string_view text, Secrecy secrecy) {
    const Ticks now = m_runtime.GetTickCount();
    if (TicksSince(now, m_lastCommand.exchange(now)) > answerForgotten) m_unanswered = 0;
    if (secrecy == Secrecy::CarriesCode) m_secrets.CommandSent(now);
    if (m_log.Wants(LogLevel::Trace)) {
        m_log.Trace("[SendATCommond]--Commond:%s\r\n", LogText(m_log, text).CStr());
    }
    if (UsbLinkPresent()) {
        m_log.DebugOutput("GetUsbHostStatus-----success!\r\n");
        m_log.Trace("[SendATCommond]--Commond:senat 1\r\n");
        ++m_unanswered;
        if (m_escapeDue.exchange(false)) QueueBytes(escape, "");
        QueueBytes(text, "\r");
        return;
    }
    m_log.Trace("[SendATCommond]--Commond:com is unload \r\n");
    m_log.DebugOutput("GetUsbHostStatus-----fail!\r\n");
    if (!m_linkUp.exchange(false)) return;
    m_log.DebugOutput("m_closePipe-----begin!\r\n");
    void* const owner = m_owner;
    if (owner && m_handlers.OnClosePipe) m_handlers.OnClosePipe(owner);
    m_log.DebugOutput("m_closePipe-----end!\r\n");
}

bool CATChannel::UsbLinkPresent() {
    int present = 0;
    return m_driver.GetUsbHostStatus(present) && present != 0;
}

void CATChannel::QueueBytes(std::string_view text, std::string_view terminator) {
    const std::size_t length = text.size() + terminator.size();
    auto buffer = std::make_unique<char[]>(length);
    std::copy(text.begin(), text.end(), buffer.get());
    std::copy(terminator.begin(), terminator.end(), buffer.get() + text.size());
    const LinkFields link = m_link.Get();
    if (!WritePort(link, m_runtime, m_log, buffer, length)) {
        m_log.Trace("[SendATCommond]--the writer takes no more: the command is lost");
    }
}

void CATChannel::cmd_hangup() {
    m_log.Trace("[SendATCommond]--cmd_hangup");
    SendATCommond("AT+CHUP");
}

void CATChannel::cmd_answer_call() {
    m_log.Trace("[SendATCommond]--cmd_answer_call");
    SendATCommond("ATA");
}

void CATChannel::cmd_dial(const DialString& number) {
    const std::string_view text = number.View();
    if (ChangesCode(text)) m_secrets.CommandSent(m_runtime.GetTickCount());
    m_log.Trace("[SendATCommond]--cmd_dial--number:%s", LogText(m_log, text).CStr());
    m_dialWasServiceCode = IsServiceCode(text);
    if (m_dialWasServiceCode) {
        UssdString service;
        [[maybe_unused]] const ValueFault fault = UssdString::Parse(text, service);
        assert(fault == ValueFault::None);
        RequestUssd(service);
        return;
    }
    DialString::Text dialled;
    for (const char& c : text) {
        if (!DialRules::IsSeparator(c)) dialled.Append({&c, 1});
    }
    SendATCommond(CommandLine<200>("ATD%s;", dialled.View().data()).View());
}

void CATChannel::cmd_ussd(int mode, const UssdString& text) {
    m_log.Trace("[SendATCommond]--cmd_ussd--number:%s", LogText(m_log, text.View()).CStr());
    SendATCommond(CommandLine<400>("AT+CUSD=%d,\"%s\",15", mode, text.CStr()).View());
}

void CATChannel::RequestUssd(const UssdString& text) {
    constexpr Ticks characterSetPause = 500;
    constexpr int request = 1;
    cmd_set_cscs_gsm();
    m_runtime.Sleep(characterSetPause);
    ussdPending.Set(m_runtime.GetTickCount());
    cmd_ussd(request, text);
}

void CATChannel::cmd_deletems(SimSlot slot) {
    m_log.Trace("[SendATCommond]--cmd_deletems");
    SendATCommond(CommandLine<200>("AT+CMGD=%d", slot.Number()).View());
}

void CATChannel::cmd_readms(SimSlot slot) {
    SendATCommond(CommandLine<16>("AT+CMGR=%d", slot.Number()).View());
}

void CATChannel::cmd_sendms(const PduText& pdu) {
    const std::string_view hex = pdu.View();
    m_pdu.With([hex](FixedText<512>& buffer) {
        buffer.Assign(hex);
        buffer.Append({&ctrlZ, 1});
    });
    const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
    const int centerOctets = digit(hex[0]) * 16 + digit(hex[1]);
    const int tpduOctets = static_cast<int>(hex.size() / 2) - (centerOctets + 1);
    m_promptAwaited = true;
    SendATCommond(CommandLine<32>("AT+CMGS=%d", tpduOctets).View());
}

void CATChannel::WriteMessage2Port() {
    const FixedText<512> pdu = m_pdu.With([](FixedText<512>& buffer) { return std::exchange(buffer, {}); });
    if (!pdu.Empty()) QueueBytes(pdu.View(), "");
}

void CATChannel::AbandonMessage() {
    m_pdu.Set({});
    m_promptAwaited = false;
    m_escapeDue = true;
}

void CATChannel::cmd_inquire_mscenter() {
    m_log.Trace("[SendATCommond]--cmd_inquire_mscenter");
    SendATCommond("AT+CSCA?");
}

void CATChannel::cmd_set_mscenter(const CenterNumber& number) {
    m_log.Trace("[SendATCommond]--cmd_set_mscenter---number:%s", number.CStr());
    SendATCommond(CommandLine<200>("AT+CSCA=\"%s\"", number.CStr()).View());
}

void CATChannel::cmd_set_sm() {
    m_log.Trace("[SendATCommond]--cmd_set_sm");
    SendATCommond("AT+CPMS=\"SM\",\"SM\",\"SM\"");
}

void CATChannel::cmd_set_pdums() {
    m_log.Trace("[SendATCommond]--cmd_set_pdums");
    SendATCommond("AT+CMGF=0");
}

void CATChannel::cmd_set_realtimems() {
    m_log.Trace("[SendATCommond]--cmd_set_realtimems");
    SendATCommond("AT+CNMI=2,1");
}

void CATChannel::cmd_set_sim_mode() {
    m_log.Trace("[SendATCommond]--cmd_set_sim_mode");
    SendATCommond("AT+CPBS = \"SM\"");
}

void CATChannel::cmd_get_sim_status() {
    m_log.Trace("[SendATCommond]--cmd_get_sim_status");
    SendATCommond("AT+CPBS?");
}

void CATChannel::cmd_get_sim_content(SimSlot first, SimSlot last) {
    m_log.Trace("[SendATCommond]--cmd_get_sim_content");
    SendATCommond(CommandLine<16>("AT+CPBR=%d,%d", first.Number(), last.Number()).View());
}

void CATChannel::cmd_get_sim_test() {
    m_log.Trace("[SendATCommond]--cmd_get_sim_test");
    SendATCommond("AT+CPBW=?");
}

void CATChannel::cmd_delete_sim_num(SimSlot slot) {
    m_log.Trace("[SendATCommond]--cmd_delete_sim_num");
    SendATCommond(CommandLine<16>("AT+CPBW=%d", slot.Number()).View());
}

void CATChannel::cmd_set_sim_content(SimSlot slot, const SimName& name, const SimNumber& number) {
    m_log.Trace("[SendATCommond]--cmd_set_sim_content");
    SendATCommond(
        CommandLine<256>("AT+CPBW=%d,\"%s\",129,\"%s\"", slot.Number(), number.CStr(), name.CStr()).View());
}

void CATChannel::cmd_set_cscs_ucs2() {
    SendATCommond("AT+CSCS=\"UCS2\"");
}

void CATChannel::cmd_set_cscs_gsm() {
    SendATCommond("AT+CSCS=\"GSM\"");
}

void CATChannel::cmd_get_cimi() {
    SendATCommond("AT+CIMI");
}

void CATChannel::cmd_get_gsn() {
    SendATCommond("AT+GSN");
}

void CATChannel::cmd_check_signal() {
    m_log.Trace("[SendATCommond]--cmd_check_signal");
    SendATCommond("AT+CSQ");
}

void CATChannel::cmd_at_ipr() {
    m_log.Trace("[SendATCommond]--cmd_at_ipr");
    SendATCommond("AT+IPR=115200");
}

void CATChannel::cmd_at_OriginalMsg() {
    m_log.Trace("[SendATCommond]--cmd_at_OriginalMsg");
    SendATCommond("AT+URCIND=1");
}

void CATChannel::cmd_at_NetworkMode(int mode) {
    constexpr Ticks pause = 100;
    m_log.Trace("[SendATCommond]--cmd_at_NetworkMode");
    SendATCommond(CommandLine<128>("AT+MODODR=%d", mode).View());
    m_runtime.Sleep(pause);
}

void CATChannel::cmd_at_cpin() {
    m_log.Trace("[SendATCommond]--cmd_at_cpin");
    m_cpinAsked.Set(m_runtime.GetTickCount());
    SendATCommond("AT+CPIN?");
}

void CATChannel::cmd_at_clck(const Facility& facility, int mode, const PhCode& password) {
    m_log.Trace("[SendATCommond]--cmd_at_clck");
    SendATCommond(CommandLine<100>("AT+CLCK=\"%s\",%d,\"%s\"", facility.CStr(), mode, password.CStr()).View(),
                  Secrecy::CarriesCode);
}

void CATChannel::cmd_enter_pin(const PinCode& code, const std::optional<PinCode>& second) {
    m_log.Trace("[SendATCommond]--cmd_at_clck");
    const char* const separator = second ? "," : "";
    const char* const next = second ? second->CStr() : "";
    SendATCommond(CommandLine<100>("AT+CPIN=%s%s%s", code.CStr(), separator, next).View(),
                  Secrecy::CarriesCode);
}

void CATChannel::cmd_enter_quoted_pin(const PhCode& code) {
    m_log.Trace("[SendATCommond]--cmd_enter_quoted_pin");
    SendATCommond(CommandLine<100>("AT+CPIN=\"%s\"", code.CStr()).View(), Secrecy::CarriesCode);
}

void CATChannel::cmd_enter_quoted_puk(const PinCode& puk, const PinCode& pin) {
    m_log.Trace("[SendATCommond]--cmd_enter_quoted_puk");
    SendATCommond(CommandLine<100>("AT+CPIN=\"%s\",\"%s\"", puk.CStr(), pin.CStr()).View(),
                  Secrecy::CarriesCode);
}

void CATChannel::cmd_set_clip() {
    SendATCommond("AT+CLIP=1");
}

void CATChannel::cmd_send_dtmf(const DtmfKey& key) {
    SendATCommond(CommandLine<16>("AT+VTS=%c", key.View().front()).View());
}

void CATChannel::cmd_set_volume(int level) {
    SendATCommond(CommandLine<16>("AT+CLVL=%d", std::clamp(level, 0, 5)).View());
}

void CATChannel::cmd_set_sidetone() {
    SendATCommond("AT+SIDET=0");
}

void CATChannel::cmd_set_echo(int parameter, int value) {
    SendATCommond(CommandLine<50>("AT+ECHO=%d,%d", parameter, value).View());
}

void CATChannel::cmd_set_apn(const ApnName& apn) {
    SendATCommond(CommandLine<200>("AT+CGDCONT=1,\"IP\",\"%s\"", apn.CStr()).View());
}

void CATChannel::cmd_at() {
    SendATCommond("AT");
}

void CATChannel::cmd_at_echo() {
    SendATCommond("ATE1");
}

void CATChannel::cmd_select_access(AccessTechnology technology) {
    if (technology == AccessTechnology::Any) {
        SendATCommond("AT+COPS=0");
        return;
    }
    SendATCommond(CommandLine<50>("AT+COPS=0,,,%d", static_cast<int>(technology)).View());
}

}  // namespace varkel
