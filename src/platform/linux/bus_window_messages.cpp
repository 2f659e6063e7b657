#include "platform/linux/bus_window_messages.h"

#include <charconv>
#include <systemd/sd-bus.h>
#include <utility>

#include "platform/linux/name_encoding.h"

namespace varkel {

namespace {

constexpr const char* windowInterface = "org.varkel.Window1";
constexpr const char* windowsInterface = "org.varkel.Windows1";
constexpr const char* windowsPath = "/org/varkel/window";
constexpr std::uint32_t mostPrograms = 1u << 24;
// The number of a program that has no bus; the bus itself is far from having given that many.
constexpr std::uint32_t alone = mostPrograms - 1;

template <class Number>
std::optional<Number> NumberBehind(std::string_view text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return std::nullopt;
    text.remove_prefix(prefix.size());
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::uint32_t ProgramNumber(const Bus& bus) {
    const auto number = NumberBehind<std::uint32_t>(bus.UniqueName(), ":1.");
    return number && *number < alone ? *number : alone;
}

std::string PathOf(WindowIndex window) {
    return std::string(windowsPath) + "/" + std::to_string(window);
}

BusMethod MethodOf(WindowHandle window, const char* member) {
    const auto number = static_cast<std::uint32_t>(window);
    return {":1." + std::to_string(number >> 8), PathOf(static_cast<WindowIndex>(number & 0xFF)),
            windowInterface, member};
}

// The well-known name under which the owner of a title is found; "" when the title is too long for one.
std::string BusNameOfTitle(std::string_view title) {
    constexpr std::size_t longestBusName = 255;
    std::string name = "org.varkel.window.W" + EncodedName(title, '_');
    return name.size() <= longestBusName ? name : std::string();
}

int Refuse(sd_bus_error* error, const char* name, const char* text) {
    return sd_bus_error_set(error, name, text);
}

}  // namespace

// What hangs on the bus: used on the bus thread alone, but for the table, which every thread may use.
struct BusWindowMessages::Service {
    Service(Bus& connection, std::shared_ptr<WindowTable> windowTable)
        : bus(connection), table(std::move(windowTable)), program(ProgramNumber(connection)) {}

    void Publish(sd_bus* connection, WindowIndex window);
    void PublishRoot(sd_bus* connection);
    void WithdrawAll();

    static Service& Of(void* userdata) { return *static_cast<Service*>(userdata); }
    static std::optional<WindowIndex> Addressed(const char* path) {
        return NumberBehind<WindowIndex>(path, std::string(windowsPath) + "/");
    }
    std::uint32_t Handle(WindowIndex window) const { return program << 8 | window; }

    static int OnPost(sd_bus_message* call, void* userdata, sd_bus_error* error);
    static int OnPostRegistered(sd_bus_message* call, void* userdata, sd_bus_error* error);
    static int OnCopyData(sd_bus_message* call, void* userdata, sd_bus_error* error);
    static int OnFindWindow(sd_bus_message* call, void* userdata, sd_bus_error* error);
    static int OnBroadcast(sd_bus_message* signal, void* userdata, sd_bus_error* error);
    static int GetTitle(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply,
                        void* userdata, sd_bus_error*);
    static int GetHandle(sd_bus*, const char* path, const char*, const char*, sd_bus_message* reply,
                         void* userdata, sd_bus_error*);
    int Deliver(sd_bus_message* call, const WindowMessage& message, sd_bus_error* error);

    static const sd_bus_vtable windowMethods[];
    static const sd_bus_vtable windowsMethods[];

    Bus& bus;
    const std::shared_ptr<WindowTable> table;
    const std::uint32_t program;
    std::map<WindowIndex, sd_bus_slot*> slots;  // 0 holds the object above the windows
    sd_bus_slot* broadcasts = nullptr;
};

// Any program that the bus lets through may call; who that is, is the bus's policy.
const sd_bus_vtable BusWindowMessages::Service::windowMethods[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS("Post", SD_BUS_ARGS("u", id, "u", wParam, "u", lParam), SD_BUS_NO_RESULT,
                            Service::OnPost, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS("PostRegistered", SD_BUS_ARGS("s", name, "u", wParam, "u", lParam),
                            SD_BUS_NO_RESULT, Service::OnPostRegistered, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS("CopyData", SD_BUS_ARGS("u", dwData, "ay", data), SD_BUS_RESULT("u", result),
                            Service::OnCopyData, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("Title", "s", Service::GetTitle, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Handle", "u", Service::GetHandle, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_VTABLE_END,
};

const sd_bus_vtable BusWindowMessages::Service::windowsMethods[] = {
    SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS("FindWindow", SD_BUS_ARGS("s", title), SD_BUS_RESULT("u", window),
                            Service::OnFindWindow, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL_WITH_ARGS("Broadcast", SD_BUS_ARGS("s", name, "u", wParam, "u", lParam), 0),
    SD_BUS_VTABLE_END,
};

void BusWindowMessages::Service::PublishRoot(sd_bus* connection) {
    sd_bus_add_object_vtable(connection, &slots[0], windowsPath, windowsInterface, windowsMethods, this);
    sd_bus_match_signal_async(connection, &broadcasts, nullptr, windowsPath, windowsInterface, "Broadcast",
                              OnBroadcast, nullptr, this);
}

void BusWindowMessages::Service::Publish(sd_bus* connection, WindowIndex window) {
    sd_bus_add_object_vtable(connection, &slots[window], PathOf(window).c_str(), windowInterface,
                             windowMethods, this);
}

void BusWindowMessages::Service::WithdrawAll() {
    for (const auto& [window, slot] : slots)
        sd_bus_slot_unref(slot);
    slots.clear();
    broadcasts = sd_bus_slot_unref(broadcasts);
}

int BusWindowMessages::Service::Deliver(sd_bus_message* call, const WindowMessage& message,
                                        sd_bus_error* error) {
    const auto window = Addressed(sd_bus_message_get_path(call));
    if (!window || !table->Deliver(*window, message))
        return Refuse(error, busErrorBusy, "The window takes no message now");
    return sd_bus_reply_method_return(call, nullptr);
}

int BusWindowMessages::Service::OnPost(sd_bus_message* call, void* userdata, sd_bus_error* error) {
    WindowMessage message;
    const int result = sd_bus_message_read(call, "uuu", &message.id, &message.wParam, &message.lParam);
    if (result < 0) return result;
    if (message.id >= firstRegisteredMessage)
        return Refuse(error, busErrorInvalid, "Registered messages travel by name");
    return Of(userdata).Deliver(call, message, error);
}

int BusWindowMessages::Service::OnPostRegistered(sd_bus_message* call, void* userdata, sd_bus_error* error) {
    const char* name = nullptr;
    WindowMessage message;
    const int result = sd_bus_message_read(call, "suu", &name, &message.wParam, &message.lParam);
    if (result < 0) return result;
    message.id = Of(userdata).table->IdOf(name);
    // A name that nobody here has registered means nothing to any of these windows.
    if (message.id == 0) return sd_bus_reply_method_return(call, nullptr);
    return Of(userdata).Deliver(call, message, error);
}

int BusWindowMessages::Service::OnCopyData(sd_bus_message* call, void* userdata, sd_bus_error* error) {
    Service& service = Of(userdata);
    std::uint32_t dwData = 0;
    const void* bytes = nullptr;
    std::size_t size = 0;
    int result = sd_bus_message_read(call, "u", &dwData);
    if (result >= 0) result = sd_bus_message_read_array(call, 'y', &bytes, &size);
    if (result < 0) return result;
    if (size > largestCopyData) return Refuse(error, busErrorInvalid, "At most 4096 bytes can be copied");
    const auto window = Addressed(sd_bus_message_get_path(call));
    const auto request = service.bus.Defer(call);
    if (!window || !request) return Refuse(error, busErrorBusy, "Too many calls wait for an answer");
    const auto* const first = static_cast<const std::byte*>(bytes);
    const bool delivered = service.table->DeliverCopyData(
        *window, dwData, std::vector<std::byte>(first, first + size), [request](std::uint32_t answer) {
            request->Return(
                [answer](sd_bus_message* reply) { return sd_bus_message_append(reply, "u", answer); });
        });
    if (!delivered) request->Fail(busErrorBusy, "The window takes no message now");
    return 1;
}

int BusWindowMessages::Service::OnFindWindow(sd_bus_message* call, void* userdata, sd_bus_error*) {
    const char* title = nullptr;
    const int result = sd_bus_message_read(call, "s", &title);
    if (result < 0) return result;
    const auto window = Of(userdata).table->Find(title);
    return sd_bus_reply_method_return(call, "u", window ? Of(userdata).Handle(*window) : 0u);
}

int BusWindowMessages::Service::OnBroadcast(sd_bus_message* signal, void* userdata, sd_bus_error*) {
    Service& service = Of(userdata);
    // What this program broadcasts has reached its own windows without the bus.
    const char* const sender = sd_bus_message_get_sender(signal);
    if (!sender || sender == service.bus.UniqueName()) return 0;
    const char* name = nullptr;
    WindowMessage message;
    if (sd_bus_message_read(signal, "suu", &name, &message.wParam, &message.lParam) < 0) return 0;
    message.id = service.table->IdOf(name);
    if (message.id != 0) service.table->DeliverToAll(message);
    return 0;
}

int BusWindowMessages::Service::GetTitle(sd_bus*, const char* path, const char*, const char*,
                                         sd_bus_message* reply, void* userdata, sd_bus_error*) {
    const auto window = Addressed(path);
    const std::string title = window ? Of(userdata).table->Title(*window).value_or("") : "";
    return sd_bus_message_append(reply, "s", title.c_str());
}

int BusWindowMessages::Service::GetHandle(sd_bus*, const char* path, const char*, const char*,
                                          sd_bus_message* reply, void* userdata, sd_bus_error*) {
    return sd_bus_message_append(reply, "u", Of(userdata).Handle(Addressed(path).value_or(0)));
}

BusWindowMessages::BusWindowMessages(Bus& bus, MessageLoop& loop, ProblemSink onProblem)
    : m_bus(bus),
      m_table(std::make_shared<WindowTable>(loop, std::move(onProblem))),
      m_service(std::make_unique<Service>(bus, m_table)) {
    m_bus.Run([this](sd_bus* connection) { m_service->PublishRoot(connection); });
}

BusWindowMessages::~BusWindowMessages() {
    m_bus.Run([this](sd_bus*) { m_service->WithdrawAll(); });
    m_table->RemoveAll();
}

WindowHandle BusWindowMessages::CreateWindow(std::string_view title, WindowProcedure procedure) {
    const auto window = m_table->Add(title, std::move(procedure));
    if (!window) return WindowHandle::None;
    // The one handle that stands for all windows is no window's.
    if (HandleOf(*window) == WindowHandle::Broadcast) {
        m_table->Remove(*window);
        return WindowHandle::None;
    }
    m_bus.Run([&](sd_bus* connection) { m_service->Publish(connection, *window); });
    ClaimTitle(std::string(title));
    return HandleOf(*window);
}

void BusWindowMessages::DestroyWindow(WindowHandle handle) {
    const auto window = OwnWindow(handle);
    const auto title = window ? m_table->Title(*window) : std::nullopt;
    if (!title || !m_table->Remove(*window)) return;
    m_bus.Run([&](sd_bus*) {
        sd_bus_slot_unref(m_service->slots[*window]);
        m_service->slots.erase(*window);
    });
    GiveUpTitle(*title);
}

void BusWindowMessages::SetWindowText(WindowHandle handle, std::string_view title) {
    const auto window = OwnWindow(handle);
    const auto before = window ? m_table->Title(*window) : std::nullopt;
    if (!before || *before == title) return;
    m_table->SetTitle(*window, title);
    GiveUpTitle(*before);
    ClaimTitle(std::string(title));
    m_bus.Post([path = PathOf(*window)](sd_bus* connection) {
        sd_bus_emit_properties_changed(connection, path.c_str(), windowInterface, "Title", nullptr);
    });
}

void BusWindowMessages::ClaimTitle(const std::string& title) {
    const std::string name = BusNameOfTitle(title);
    if (!title.empty() && !name.empty()) m_bus.RequestName(name);
}

void BusWindowMessages::GiveUpTitle(const std::string& title) {
    const std::string name = BusNameOfTitle(title);
    if (!title.empty() && !name.empty() && !m_table->Find(title)) m_bus.ReleaseName(name);
}

MessageId BusWindowMessages::RegisterWindowMessage(std::string_view name) {
    return m_table->RegisterName(name);
}

bool BusWindowMessages::PostMessage(WindowHandle window, const WindowMessage& message) {
    const std::string name = m_table->NameOf(message.id);
    if (message.id >= firstRegisteredMessage && name.empty()) return false;
    if (window == WindowHandle::Broadcast) return Broadcast(name, message);
    if (const auto own = OwnWindow(window)) return m_table->Deliver(*own, message);
    if (static_cast<std::uint32_t>(window) % 256 == 0) return false;
    return m_bus.Post([method = MethodOf(window, name.empty() ? "Post" : "PostRegistered"), name,
                       message](sd_bus* connection) {
        sd_bus_message* call = nullptr;
        int result =
            sd_bus_message_new_method_call(connection, &call, method.destination.c_str(), method.path.c_str(),
                                           method.interface.c_str(), method.member.c_str());
        if (result >= 0) {
            result = name.empty() ? sd_bus_message_append(call, "u", message.id)
                                  : sd_bus_message_append(call, "s", name.c_str());
        }
        if (result >= 0) result = sd_bus_message_append(call, "uu", message.wParam, message.lParam);
        // Without a place for the reply's number sd-bus asks for none.
        if (result >= 0) sd_bus_send(connection, call, nullptr);
        sd_bus_message_unref(call);
    });
}

bool BusWindowMessages::Broadcast(const std::string& name, const WindowMessage& message) {
    if (name.empty()) return false;
    const bool delivered = m_table->DeliverToAll(message);
    const bool sent = m_bus.Post([name, message](sd_bus* connection) {
        sd_bus_emit_signal(connection, windowsPath, windowsInterface, "Broadcast", "suu", name.c_str(),
                           message.wParam, message.lParam);
    });
    return delivered && (sent || !m_bus.Available());
}

WindowHandle BusWindowMessages::FindWindow(std::string_view title) {
    if (title.empty() || title.find('\0') != std::string_view::npos) return WindowHandle::None;
    if (const auto own = m_table->Find(title)) return HandleOf(*own);
    const std::string name = BusNameOfTitle(title);
    std::uint32_t handle = 0;
    if (name.empty() ||
        !m_bus.Call(
            {name, windowsPath, windowsInterface, "FindWindow"},
            [&](sd_bus_message* m) { return sd_bus_message_append(m, "s", std::string(title).c_str()); },
            [&](sd_bus_message* m) { return sd_bus_message_read(m, "u", &handle); }))
        return WindowHandle::None;
    return WindowHandle{handle};
}

std::optional<std::string> BusWindowMessages::GetWindowText(WindowHandle window) {
    if (const auto own = OwnWindow(window)) return m_table->Title(*own);
    BusMethod get = MethodOf(window, "Get");
    get.interface = "org.freedesktop.DBus.Properties";
    std::string title;
    const bool answered = m_bus.Call(
        get, [](sd_bus_message* m) { return sd_bus_message_append(m, "ss", windowInterface, "Title"); },
        [&](sd_bus_message* m) {
            const char* text = "";
            const int result = sd_bus_message_read(m, "v", "s", &text);
            if (result >= 0) title = text;
            return result;
        });
    return answered ? std::optional(title) : std::nullopt;
}

std::optional<std::uint32_t> BusWindowMessages::SendCopyData(WindowHandle window, std::uint32_t dwData,
                                                             std::span<const std::byte> data) {
    if (data.size() > largestCopyData || static_cast<std::uint32_t>(window) % 256 == 0) return std::nullopt;
    std::uint32_t result = 0;
    const bool answered = m_bus.Call(
        MethodOf(window, "CopyData"),
        [&](sd_bus_message* m) {
            const int appended = sd_bus_message_append(m, "u", dwData);
            return appended < 0 ? appended : sd_bus_message_append_array(m, 'y', data.data(), data.size());
        },
        [&](sd_bus_message* m) { return sd_bus_message_read(m, "u", &result); });
    return answered ? std::optional(result) : std::nullopt;
}

WindowHandle BusWindowMessages::HandleOf(WindowIndex window) const {
    return WindowHandle{m_service->Handle(window)};
}

std::optional<WindowIndex> BusWindowMessages::OwnWindow(WindowHandle window) const {
    const auto number = static_cast<std::uint32_t>(window);
    if (number >> 8 != m_service->program || number % 256 == 0) return std::nullopt;
    return static_cast<WindowIndex>(number);
}

}  // namespace varkel
