#include "platform/linux/kovex_drv_export.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <optional>
#include <systemd/sd-bus.h>
#include <utility>
#include <vector>

#include "platform/linux/bus_kovex_drv.h"

namespace varkel {

// Shared with the work that waits in the executor.
struct KovexDrvExport::Service : std::enable_shared_from_this<KovexDrvExport::Service> {
    Service(Bus& connection, Handler carriesOut, Executor runsIt)
        : bus(connection), handler(std::move(carriesOut)), executor(std::move(runsIt)) {}

    static int OnCall(sd_bus_message* call, void* userdata, sd_bus_error* error) {
        return static_cast<Service*>(userdata)->Begin(call, error);
    }

    int Begin(sd_bus_message* call, sd_bus_error* error);
    void CarryOut(const DrvEntry& entry, int value, BusRequest& request);

    Bus& bus;
    const Handler handler;
    const Executor executor;
    std::atomic<bool> closed = false;
    sd_bus_slot* slot = nullptr;  // the bus thread's
};

namespace {

// A method as sd-bus wants it; it refers to the name in drvTable, which is a literal.
sd_bus_vtable Method(const DrvEntry& entry, sd_bus_message_handler_t handler) {
    const char* const name = entry.name.data();
    switch (entry.kind) {
        case DrvKind::Get:
            return SD_BUS_METHOD_WITH_ARGS(name, SD_BUS_NO_ARGS, SD_BUS_RESULT("i", value), handler,
                                           SD_BUS_VTABLE_UNPRIVILEGED);
        case DrvKind::Set:
            return SD_BUS_METHOD_WITH_ARGS(name, SD_BUS_ARGS("i", value), SD_BUS_NO_RESULT, handler,
                                           SD_BUS_VTABLE_UNPRIVILEGED);
        case DrvKind::Action: break;
    }
    return SD_BUS_METHOD_WITH_ARGS(name, SD_BUS_NO_ARGS, SD_BUS_NO_RESULT, handler,
                                   SD_BUS_VTABLE_UNPRIVILEGED);
}

std::vector<sd_bus_vtable> Methods(sd_bus_message_handler_t handler) {
    std::vector<sd_bus_vtable> methods;
    methods.push_back(SD_BUS_VTABLE_START(SD_BUS_VTABLE_UNPRIVILEGED));
    for (const DrvEntry& entry : drvTable)
        methods.push_back(Method(entry, handler));
    methods.push_back(SD_BUS_VTABLE_END);
    return methods;
}

}  // namespace

int KovexDrvExport::Service::Begin(sd_bus_message* call, sd_bus_error* error) {
    const std::string_view member = sd_bus_message_get_member(call);
    const auto entry = std::find_if(drvTable.begin(), drvTable.end(),
                                    [&](const DrvEntry& candidate) { return candidate.name == member; });
    int value = 0;
    if (entry->kind == DrvKind::Set) {
        const int result = sd_bus_message_read(call, "i", &value);
        if (result < 0) return result;
    }
    const auto request = bus.Defer(call);
    if (!request) return sd_bus_error_set(error, busErrorBusy, "Too many calls wait for an answer");
    const bool handedOver = executor([self = shared_from_this(), entry, value, request] {
        if (!self->closed) self->CarryOut(*entry, value, *request);
    });
    if (!handedOver) request->Fail(busErrorBusy, "The driver takes no call now");
    return 1;
}

void KovexDrvExport::Service::CarryOut(const DrvEntry& entry, int value, BusRequest& request) {
    if (!handler(entry.function, value)) {
        request.Fail(busErrorFailed, std::string(entry.name) + " failed");
        return;
    }
    request.Return([get = entry.kind == DrvKind::Get, value](sd_bus_message* reply) {
        return get ? sd_bus_message_append(reply, "i", value) : 0;
    });
}

KovexDrvExport::KovexDrvExport(Bus& bus, Handler handler, Executor executor)
    : m_bus(bus), m_service(std::make_shared<Service>(bus, std::move(handler), std::move(executor))) {
    static const std::vector<sd_bus_vtable> methods = Methods(Service::OnCall);
    m_bus.Run([this](sd_bus* connection) {
        sd_bus_add_object_vtable(connection, &m_service->slot, kovexDrvPath, kovexDrvInterface,
                                 methods.data(), m_service.get());
    });
    m_exported = m_bus.RequestName(kovexDrvBusName);
}

KovexDrvExport::~KovexDrvExport() {
    m_service->closed = true;
    m_bus.ReleaseName(kovexDrvBusName);
    m_bus.Run([this](sd_bus*) { m_service->slot = sd_bus_slot_unref(m_service->slot); });
}

}  // namespace varkel
