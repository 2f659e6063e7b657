// The documented interfaces and the policy of data/dbus, next to what the programs do.
#include <grp.h>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include "platform/linux/bus_kovex_drv.h"
#include "platform/linux/bus_window_messages.h"
#include "platform/linux/kovex_drv_export.h"
#include "platform/text.h"
#include "tests/platform/dialog_fixture.h"
#include "tests/platform/private_bus.h"

namespace varkel {
namespace {

const std::string directory = VARKEL_DATA_DIRECTORY "/dbus/";

// The tags of one interface, a line each, without what is said about it for people.
std::string Bare(const std::string& xml, const std::string& interface) {
    std::istringstream lines(xml);
    std::string bare;
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        const std::string_view tag = Trimmed(line);
        if (tag == "<interface name=\"" + interface + "\">") inside = true;
        if (inside && !tag.starts_with("<annotation name=\"org.gtk.GDBus.DocString\""))
            bare += std::string(tag) + "\n";
        if (tag == "</interface>") inside = false;
    }
    EXPECT_FALSE(bare.empty()) << interface;
    return bare;
}

std::string Introspect(Bus& bus, const std::string& destination, const char* path) {
    std::string xml;
    bus.Call(
        {destination, path, "org.freedesktop.DBus.Introspectable", "Introspect"},
        [](sd_bus_message*) { return 0; },
        [&](sd_bus_message* m) {
            const char* text = "";
            const int result = sd_bus_message_read(m, "s", &text);
            xml = text;
            return result;
        });
    return xml;
}

using BusInterfacesTest = test::DialogFixture;

TEST_F(BusInterfacesTest, AreWhatIsDocumented) {
    const test::PrivateBus daemon;
    Bus bus(daemon.Options(), {});
    Bus client(daemon.Options(), {});
    BusWindowMessages windows(bus, loop, {});
    windows.CreateWindow("3Gwindow", {});
    const KovexDrvExport driver(
        bus, [](DrvFunction, int&) { return true; }, [](const std::function<void()>&) { return true; });
    const std::pair<std::string, const char*> interfaces[] = {
        {"org.varkel.Window1", "/org/varkel/window/1"},
        {"org.varkel.Windows1", "/org/varkel/window"},
        {kovexDrvInterface, kovexDrvPath},
    };
    for (const auto& [interface, path] : interfaces) {
        EXPECT_EQ(Bare(test::FileContent(directory + interface + ".xml"), interface),
                  Bare(Introspect(client, bus.UniqueName(), path), interface));
    }
}

// The rules of a system bus, and then ours, for members of `group`.
std::string SystemBusPolicy(const std::string& group) {
    std::string ours = test::FileContent(directory + "org.varkel.conf");
    ours = ours.substr(ours.find("<policy"), ours.find("</busconfig>") - ours.find("<policy"));
    constexpr std::string_view usual = "group=\"varkel\"";
    ours.replace(ours.find(usual), usual.size(), "group=\"" + group + "\"");
    return R"(<policy context="default">
        <allow user="*"/> <deny own="*"/> <deny send_type="method_call"/> <allow send_type="signal"/>
        <allow send_requested_reply="true" send_type="method_return"/>
        <allow send_requested_reply="true" send_type="error"/>
        <allow receive_type="method_call"/> <allow receive_type="method_return"/>
        <allow receive_type="error"/> <allow receive_type="signal"/>
        <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
        </policy>)" +
           ours;
}

TEST_F(BusInterfacesTest, OnASystemBusServeTheGroupAndNobodyElse) {
    const group* const own = getgrgid(getegid());
    ASSERT_TRUE(own);
    for (const bool allowed : {true, false}) {
        const test::PrivateBus daemon(SystemBusPolicy(allowed ? own->gr_name : "no-such-group"));
        Bus phoneBus(daemon.Options(), {});
        Bus clientBus(daemon.Options(), {});
        ASSERT_TRUE(phoneBus.Available() && clientBus.Available());
        BusWindowMessages phone(phoneBus, loop, {});
        BusWindowMessages client(clientBus, loop, {});
        int posted = 0;
        const WindowHandle dialog =
            phone.CreateWindow("3Gwindow", {[&](const WindowMessage&) { ++posted; }, {}});
        const WindowHandle listener = client.CreateWindow("", {[&](const WindowMessage&) { ++posted; }, {}});
        EXPECT_EQ(client.FindWindow("3Gwindow"), allowed ? dialog : WindowHandle::None);
        EXPECT_EQ(client.GetWindowText(dialog),
                  allowed ? std::optional<std::string>("3Gwindow") : std::nullopt);
        const MessageId callIn = phone.RegisterWindowMessage("UM_CALLIN");
        client.PostMessage(dialog, {WM_USER + 1000, 0, 0});
        phone.PostMessage(listener, {WM_USER + 542, 1, 0});
        client.PostMessage(WindowHandle::Broadcast, {client.RegisterWindowMessage("UM_CALLIN"), 1, 1});
        phone.PostMessage(WindowHandle::Broadcast, {callIn, 0, 0});
        // Both posts, and each broadcast in both programs; one's own broadcast needs no bus.
        if (allowed) {
            EXPECT_TRUE(ServeUntil([&] { return posted == 6; }));
        }
        // What was sent before these are answered has arrived, or never will.
        for (BusWindowMessages* const windows : {&phone, &client, &phone})
            EXPECT_EQ(windows->FindWindow("none"), WindowHandle::None);
        ServePosted();
        EXPECT_EQ(posted, allowed ? 6 : 2);
    }
}

}  // namespace
}  // namespace varkel
