// Answers of any shape to the handlers of the SIM and its phonebook, the signal, the messages, the calls and
// the module's readiness, and what other programs post and copy. The input is a sequence of {which handler,
// length, text}.
#include <cassert>
#include <cstring>

#include "fuzz/input.h"
#include "session/call_control.h"
#include "session/client_requests.h"
#include "session/message_handling.h"
#include "session/signal_watch.h"
#include "session/sim_card.h"
#include "tests/support/session_bench.h"

namespace {

using namespace varkel;
using namespace varkel::test;

struct Target {
    Target() {
        bench.log.Open("log", 64 * 1024, LogLevel::Debug);
        reading = bench.runtime.CreateThread({.name = "reading"}, [this] {
            for (;;) {
                (void)phonebook.Read(waits);
                bench.runtime.Sleep(10);
            }
        });
    }

    void Handle(unsigned handler, std::string_view text) {
        switch (handler % 21) {
            case 0: sim.OnCpin(text); break;
            case 1: sim.OnUrcInd(text); break;
            case 2: sim.OnSimInserted(text); break;
            case 3: sim.OnCimi(text); break;
            case 4: sim.OnGsn(text); break;
            case 5: messages.OnMsComeIn(text); break;
            case 6: messages.OnMsContent(text); break;
            case 7: messages.OnMsCenterNo(text); break;
            case 8: messages.OnSendMsSuc(); break;
            case 9: calls.OnRingNo(text); break;
            case 10: phonebook.OnPhoneBookNum(text); break;
            case 11: phonebook.OnPhoneBookTest(text); break;
            case 12: phonebook.OnPhoneBookContent(text); break;
            case 13:
                phonebook.OnChunk(text);
                assert(phonebook.Entries().size() <= 1000 && phonebook.Limits().number >= 0);
                break;
            case 14: calls.OnUssd(text); break;
            case 15: calls.OnCallHooked(); break;
            case 16: calls.OnRing(text); break;
            case 17: signal.OnSignalStatus(text); break;
            case 18: clients.OnCopyData(Word(text) % 8, std::as_bytes(std::span(text))); break;
            case 19: messages.OnCpms(text); break;
            default: clients.OnMessage({WM_USER + 1000 + Word(text) % 8, Word(text), 0}); break;
        }
    }

    // The first four bytes.
    static std::uint32_t Word(std::string_view text) {
        std::uint32_t word = 0;
        std::memcpy(&word, text.data(), std::min(text.size(), sizeof word));
        return word;
    }

    SessionBench bench;
    SessionState state;
    Settings settings{bench.registry};
    CATChannel at{bench.runtime, bench.unit, bench.windows, bench.log};
    Session session{bench.platform, state, settings, at, bench.screens};
    SimCard sim{session};
    CommandTurn turn{bench.runtime, at};
    Listeners listeners{bench.windows};
    DataLink data{session, turn, listeners};
    SignalWatch signal{session, turn, data};
    PhoneBook book{session, turn};
    SimPhonebook& phonebook = book.Sim();
    OpenWaits waits{bench.runtime};
    std::shared_ptr<Thread> reading;
    CallLists lists{bench.files, bench.log};
    CallControl calls{session, turn, signal, book, lists};
    MessageHandling messages{session, turn, calls, signal};
    CGSMData block{bench.objects, bench.log};
    ClientRequests clients{session, turn, block, sim, data, listeners, messages};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static auto* const target = new Target;  // its threads wait for ever, so it is never destroyed
    for (FuzzInput input(bytes, size); !input.Empty();) {
        const unsigned handler = input.Byte();
        target->Handle(handler, input.Piece());
    }
    return 0;
}
