// An AT channel on an open link, with the test at the other end of the wire.
#pragma once

#include <string>
#include <vector>

#include "tests/modem/channel_parts.h"

namespace varkel::test {

// Every event is written down: "OnCpin(+CPIN: READY...)". The bench is the handlers' owner.
struct ChannelBench : VirtualChannel {
    explicit ChannelBench(std::uint64_t seed = 1) : VirtualChannel(seed) {
        log.Open("Nandflash\\3G", 4 << 20, LogLevel::Debug);
        driver.SetAnswer(DrvFunction::GetUsbHostStatus, 1);
        channel.SetHandlers(Handlers());
    }
    ~ChannelBench() { link.ClosePort(); }

    void Open() {
        link.SetReceiveCallback([](void* owner, std::string_view chunk) {
            static_cast<ChannelBench*>(owner)->channel.ProcessRcv(chunk);
        });
        ASSERT_TRUE(link.OpenPort(this, 7, 115200, 0, 8, 0));
        channel.Attach(link, this);
        channel.SetLinkUp(true);
    }

    std::vector<std::string> TakeEvents() {
        return m_events.With([](auto& list) { return std::exchange(list, {}); });
    }
    std::string LogContent() { return files.Content("Nandflash\\3G.ini"); }
    void Note(std::string text) {
        m_events.With([&text](auto& list) { list.push_back(std::move(text)); });
    }
    ModemHandlers Handlers();

    bool servesClient = false;
    std::shared_ptr<Event> sendResult = runtime.CreateEvent(EventReset::Manual);

  private:
    Guarded<std::vector<std::string>> m_events;
};

inline ModemHandlers ChannelBench::Handlers() {
    const auto note = [](void* owner, const char* name, std::string_view text) {
        static_cast<ChannelBench*>(owner)->Note(std::string(name) + "(" + std::string(text) + ")");
    };
    static constexpr auto noteText = note;
    ModemHandlers to;
#define NOTE_TEXT(handler) to.handler = [](void* o, std::string_view text) { noteText(o, #handler, text); }
#define NOTE_PLAIN(handler) to.handler = [](void* o) { noteText(o, #handler, ""); }
    NOTE_TEXT(OnSignalStatus);
    NOTE_TEXT(OnMsComeIn);
    NOTE_TEXT(OnMsContent);
    NOTE_TEXT(OnMsCenterNo);
    NOTE_TEXT(OnCpms);
    NOTE_TEXT(OnRingNo);
    NOTE_TEXT(OnCreg);
    NOTE_TEXT(OnCallReady);
    NOTE_TEXT(OnModelInitComplete);
    NOTE_TEXT(OnPhoneBookNum);
    NOTE_TEXT(OnPhoneBookTest);
    NOTE_TEXT(OnPhoneBookContent);
    NOTE_TEXT(OnCimi);
    NOTE_TEXT(OnGsn);
    NOTE_TEXT(OnCpin);
    NOTE_TEXT(OnDisc);
    NOTE_TEXT(OnUrcInd);
    NOTE_TEXT(OnRing);
    NOTE_TEXT(OnSimInserted);
    NOTE_PLAIN(OnCallHooked);
    NOTE_PLAIN(OnCallEstablished);
    NOTE_PLAIN(OnSendMsSuc);
    NOTE_PLAIN(OnSendTip);
    NOTE_PLAIN(OnNoSim);
    NOTE_PLAIN(OnClosePipe);
#undef NOTE_TEXT
#undef NOTE_PLAIN
    to.OnAtResult = [](void* o, AtResult result) {
        noteText(o, "OnAtResult", std::to_string(static_cast<int>(result)));
    };
    to.OnSendState = [](void* o, SendState state) {
        noteText(o, "OnSendState", std::to_string(static_cast<int>(state)));
    };
    to.OnUssd = [](void* o, std::string_view text, int) { noteText(o, "OnUssd", text); };
    to.ServesClient = [](void* o) { return static_cast<ChannelBench*>(o)->servesClient; };
    to.sendResult = sendResult;
    return to;
}

}  // namespace varkel::test
