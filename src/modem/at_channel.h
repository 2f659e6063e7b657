// The AT channel: the only way in which the rest of the program talks to the modem, and hears from it.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

#include "modem/at_values.h"
#include "modem/keyword_search.h"
#include "modem/one_shot.h"
#include "modem/secret_watch.h"
#include "modem/serial_link.h"
#include "platform/fixed_text.h"
#include "platform/guarded.h"
#include "platform/kovex_drv_api.h"
#include "platform/log.h"
#include "platform/runtime.h"
#include "platform/window_messages.h"

namespace varkel {

// What OnAtResult is told; the numbers above 3 are warnings for the user.
enum class AtResult {
    ServiceCodeFailed = 0,
    Finished = 1,  // a command ended with OK or ERROR
    Connect = 3,
    NoDialtone = 11,
    SimNotReady = 15,
};

// How a command ended.
enum class FinalResult { None, Ok, Error };

// What the module may use, by the numbers of 3GPP TS 27.007, 7.3.
enum class AccessTechnology { Any = -1, Gsm = 0, Utran = 2 };

// What OnSendState is told about a short message.
enum class SendState { Sending = 1, Sent = 2, Failed = 3 };

// The controller's handlers, each called as handler(owner, text) on the read thread with the text from its
// keyword on; the text is lent. Close-pipe is called on whatever thread sent the command. An empty slot drops
// its event.
struct ModemHandlers {
    using Plain = void (*)(void* owner);
    using Text = void (*)(void* owner, std::string_view text);

    Text OnSignalStatus = nullptr;
    Plain OnCallHooked = nullptr;
    Plain OnCallEstablished = nullptr;
    void (*OnAtResult)(void* owner, AtResult result) = nullptr;
    Text OnMsComeIn = nullptr;
    Text OnMsContent = nullptr;
    Text OnMsCenterNo = nullptr;
    void (*OnSendState)(void* owner, SendState state) = nullptr;
    Plain OnSendMsSuc = nullptr;
    Plain OnSendTip = nullptr;
    Text OnCpms = nullptr;
    Text OnRingNo = nullptr;
    Text OnCreg = nullptr;
    Text OnCallReady = nullptr;
    Text OnCcid = nullptr;
    Plain OnNoSim = nullptr;
    Text OnModelInitComplete = nullptr;
    Text OnPhoneBookNum = nullptr;
    Text OnPhoneBookTest = nullptr;
    Text OnPhoneBookContent = nullptr;
    // The final result of a command of the SIM's phonebook for which phonebookPending was set.
    void (*OnPhoneBookResult)(void* owner, bool ok) = nullptr;
    Text OnCimi = nullptr;
    Text OnGsn = nullptr;
    void (*OnUssd)(void* owner, std::string_view text, int session) = nullptr;
    Text OnCpin = nullptr;
    Text OnDisc = nullptr;
    Text OnUrcInd = nullptr;
    Text OnRing = nullptr;
    Text OnSimInserted = nullptr;
    Plain OnClosePipe = nullptr;
    // Whether the controller is sending for another program of the unit, which wants the result as an event.
    bool (*ServesClient)(void* owner) = nullptr;

    // The event that such a program waits on: set when its message was sent, reset when it failed.
    std::shared_ptr<Event> sendResult;
};

class CATChannel {
  public:
    CATChannel(Runtime& runtime, KovexDrvApi& driver, WindowMessages& windows, Log& log);

    // Before the first OpenPort, because the read thread uses the handlers from then on.
    void SetHandlers(const ModemHandlers& handlers) { m_handlers = handlers; }
    // Takes over the fields of a link that was just opened. Events that come before the first Attach are
    // dropped.
    void Attach(const CCESeries& link, void* owner);

    // The commands (3GPP TS 27.007, 27.005), one builder for each. Every one sends exactly one line and
    // returns at once unless it says otherwise; the outcome arrives as events. Any thread.
    void cmd_hangup();
    void cmd_answer_call();
    // Dials a voice call, or sends a service code as a USSD request, which takes 500 ms.
    void cmd_dial(const DialString& number);
    void cmd_ussd(int mode, const UssdString& text);
    // A service code, or the reply to the network's question: sets ussdPending. Takes 500 ms.
    void RequestUssd(const UssdString& text);
    void cmd_deletems(SimSlot slot);
    void cmd_readms(SimSlot slot);
    // Keeps the PDU for WriteMessage2Port and announces its length.
    void cmd_sendms(const PduText& pdu);
    void cmd_inquire_mscenter();
    void cmd_set_mscenter(const CenterNumber& number);
    void cmd_set_sm();
    void cmd_set_pdums();
    void cmd_set_realtimems();
    void cmd_set_sim_mode();
    void cmd_get_sim_status();
    void cmd_get_sim_content(SimSlot first, SimSlot last);
    void cmd_get_sim_test();
    void cmd_delete_sim_num(SimSlot slot);
    // The name as Ucs2HexName made it, or one that goes out unchanged.
    void cmd_set_sim_content(SimSlot slot, const SimName& name, const SimNumber& number);
    void cmd_set_cscs_ucs2();
    void cmd_set_cscs_gsm();
    void cmd_get_cimi();
    void cmd_get_gsn();
    void cmd_check_signal();
    void cmd_at_ipr();
    void cmd_at_OriginalMsg();
    // Takes 100 ms.
    void cmd_at_NetworkMode(int mode);
    void cmd_at_cpin();
    void cmd_at_clck(const Facility& facility, int mode, const PhCode& password);
    void cmd_enter_pin(const PinCode& code, const std::optional<PinCode>& second);
    // The PIN or another code that the SIM or the module waits for, and a PUK with the new PIN, as 3GPP TS
    // 27.007, 8.3 writes them.
    void cmd_enter_quoted_pin(const PhCode& code);
    void cmd_enter_quoted_puk(const PinCode& puk, const PinCode& pin);
    void cmd_set_clip();
    void cmd_send_dtmf(const DtmfKey& key);
    void cmd_set_volume(int level);
    void cmd_set_sidetone();
    void cmd_set_echo(int parameter, int value);
    void cmd_set_apn(const ApnName& apn);
    // Nothing but a sign of life.
    void cmd_at();
    // Has the module repeat what it is sent.
    void cmd_at_echo();
    // Has the module choose its network, maybe of one technology only.
    void cmd_select_access(AccessTechnology technology);

    // Writes the PDU that cmd_sendms kept, and forgets it. Nothing is written when there is none.
    void WriteMessage2Port();
    // Gives up a message whose prompt or result did not come: its PDU is forgotten. Should the module be
    // waiting for the text, which would then be made of the next commands, the ESC that goes out before the
    // next one ends that (3GPP TS 27.005, 3.5.1); at other times it means nothing.
    void AbandonMessage();

    // The parser: takes one chunk and raises its events. Read thread only.
    void ProcessRcv(std::string_view chunk);

    // A new request to a call takes the place of those before it.
    void ClearCallRequests() {
        dialPending.Take();
        hangUpPending.Take();
        m_dialWasServiceCode = false;
    }

    // When the last command was sent.
    Ticks LastCommand() const { return m_lastCommand; }
    // The controller knows the module's USB link to be up.
    void SetLinkUp(bool up) { m_linkUp = up; }
    bool LinkUp() const { return m_linkUp; }
    bool DialWasServiceCode() const { return m_dialWasServiceCode; }
    // "AT+CPIN?" was answered by an error; clears the mark.
    bool TakeCpinRefused() { return m_cpinRefused.exchange(false); }
    // The last OK or ERROR since it was taken.
    FinalResult TakeFinalResult() { return m_finalResult.exchange(FinalResult::None); }
    bool TakeSimBusy() { return m_simBusy.exchange(false); }
    bool TakeUnderVoltage() { return m_underVoltage.exchange(false); }
    bool UssdSession() const { return m_ussdSession; }

    // A dial, hang-up, message, USSD or phonebook request has not had its final result.
    bool OneShotPending() const {
        return hangUpPending.Pending() || dialPending.Pending() || m_promptAwaited || sendPending.Pending() ||
               ussdPending.Pending() || phonebookPending.Pending();
    }
    // A command of the last `memory` ms has not had its final result.
    bool AnswerOutstanding(Ticks memory) const;

    // Set by the controller just before the command, taken by the first final result that follows.
    OneShot hangUpPending;
    OneShot dialPending;
    // Set when the prompt arrives.
    OneShot sendPending;
    // Set by RequestUssd, taken by "+CUSD:" and "ERROR".
    OneShot ussdPending;
    // Set by whoever reads or writes the SIM's phonebook, who also sees to its end.
    OneShot phonebookPending;

  private:
    enum class Secrecy { None, CarriesCode };

    void SendATCommond(std::string_view text, Secrecy secrecy = Secrecy::None);
    bool UsbLinkPresent();
    void QueueBytes(std::string_view text, std::string_view terminator);

    void SearchAndDispatch(std::string_view chunk);
    // The next chunk completes what `text` begins.
    void AwaitRest(Keyword keyword, std::string_view text);
    void Process_event(Keyword keyword, std::string_view param);
    void OnFinalError();
    void OnFinalOk();
    // All results of the text: each is an answer, though they raise one event.
    void CountFinalResults(std::string_view text, std::string_view result);
    // Those of a chunk that begins or ends a split answer, and raises no event for them.
    void CountUnseenResults(std::string_view chunk);
    void ReportPhoneBookResult(bool ok);
    void OnPrompt();
    bool ServesClient() const;
    void TakeSendResult(bool sent);

    Runtime& m_runtime;
    KovexDrvApi& m_driver;
    WindowMessages& m_windows;
    Log& m_log;

    std::atomic<void*> m_owner = nullptr;
    Guarded<LinkFields> m_link;
    ModemHandlers m_handlers;

    // Sending side.
    Guarded<FixedText<512>> m_pdu;  // hexadecimal, ended by Ctrl-Z
    std::atomic<Ticks> m_lastCommand = 0;
    std::atomic<int> m_unanswered = 0;  // commands without a final result, as far as it was seen
    std::atomic<bool> m_escapeDue = false;
    std::atomic<bool> m_promptAwaited = false;  // from cmd_sendms to the prompt or the end of the attempt
    std::atomic<bool> m_dialWasServiceCode = false;
    std::atomic<bool> m_linkUp = false;
    OneShot m_cpinAsked;  // taken by "+CPIN:" and "ERROR"
    std::atomic<bool> m_cpinRefused = false;
    std::atomic<FinalResult> m_finalResult = FinalResult::None;
    std::atomic<bool> m_simBusy = false;
    std::atomic<bool> m_underVoltage = false;
    std::atomic<bool> m_ussdSession = false;
    SecretWatch m_secrets;

    // Parser, read thread only.
    Keyword m_pending = Keyword::Csq;
    std::array<char, 2048> m_accumulated{};
    std::size_t m_accumulatedLength = 0;
    bool m_ringAllowed = true;
};

// Whether a dial string goes out as a USSD request: "*...#" and "#...#", and any two characters that begin
// with "7".
bool IsServiceCode(std::string_view number);

}  // namespace varkel
