// Whatever the modem sends, in whatever chunks: the channel's parser, with one-shots pending and codes
// outstanding. The input is a sequence of {what to set first, length, chunk}.
#include "fuzz/input.h"
#include "tests/modem/channel_parts.h"

namespace {

using namespace varkel;
using namespace varkel::test;

struct Target : VirtualChannel {
    Target() {
        log.Open("log", 64 * 1024, LogLevel::Debug);
        channel.SetHandlers(Handlers());
        channel.Attach(link, this);
        windows.CreateWindow("MsgTipDlg", {});
    }

    // Every handler reads all that it is lent.
    static ModemHandlers Handlers() {
        ModemHandlers to;
        const auto read = [](void* owner, std::string_view text) {
            for (const char c : text)
                static_cast<Target*>(owner)->sum += static_cast<unsigned char>(c);
        };
        to.OnSignalStatus = to.OnMsComeIn = to.OnMsContent = to.OnMsCenterNo = to.OnCpms = read;
        to.OnRingNo = to.OnCreg = to.OnCallReady = to.OnCcid = to.OnModelInitComplete = read;
        to.OnPhoneBookNum = to.OnPhoneBookTest = to.OnPhoneBookContent = to.OnCimi = to.OnGsn = read;
        to.OnCpin = to.OnDisc = to.OnUrcInd = to.OnRing = to.OnSimInserted = read;
        to.OnSendMsSuc = [](void* owner) { static_cast<Target*>(owner)->channel.WriteMessage2Port(); };
        return to;
    }

    void Set(unsigned flags) {
        const Ticks now = runtime.GetTickCount();
        if (flags & 1) channel.dialPending.Set(now);
        if (flags & 2) channel.hangUpPending.Set(now);
        if (flags & 4) channel.sendPending.Set(now);
        if (flags & 8) channel.ussdPending.Set(now);
        if (flags & 16) channel.cmd_at_cpin();
        PinCode pin;
        if ((flags & 32) && PinCode::Parse("1234", pin) == ValueFault::None)
            channel.cmd_enter_pin(pin, std::nullopt);
        if (flags & 64) runtime.Sleep(SecretWatch::patience);
    }

    unsigned sum = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static Target target;
    for (FuzzInput input(bytes, size); !input.Empty();) {
        target.Set(input.Byte());
        target.channel.ProcessRcv(input.Piece().substr(0, 1024));
    }
    return 0;
}
