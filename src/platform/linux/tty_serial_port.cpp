#include "platform/linux/tty_serial_port.h"

#include <cerrno>
#include <utility>

#include "platform/linux/tty_device.h"

namespace varkel {

TtySerialPort::TtySerialPort(LinuxRuntime& runtime, TtyPath ttyPath, Vanished onVanished)
    : m_runtime(runtime), m_ttyPath(std::move(ttyPath)), m_onVanished(std::move(onVanished)) {}

TtySerialPort::~TtySerialPort() {
    for (const auto& [handle, device] : m_devices)
        device->Close();
}

CommHandle TtySerialPort::CreateFile(std::string_view deviceName) {
    const std::string path = m_ttyPath(deviceName);
    if (path.empty()) return CommHandle::Invalid;
    auto device =
        TtyDevice::Open(m_runtime, path, [onVanished = m_onVanished, name = std::string(deviceName)] {
            if (onVanished) onVanished(name);
        });
    if (!device) return CommHandle::Invalid;
    std::lock_guard lock(m_mutex);
    const CommHandle handle{++m_lastHandle};
    m_devices[handle] = std::move(device);
    return handle;
}

int TtySerialPort::CloseHandle(CommHandle handle) {
    std::shared_ptr<TtyDevice> device;
    {
        std::lock_guard lock(m_mutex);
        const auto found = m_devices.find(handle);
        if (found == m_devices.end()) return EBADF;
        device = std::move(found->second);
        m_devices.erase(found);
    }
    device->Close();
    return 0;
}

bool TtySerialPort::GetCommState(CommHandle handle, Dcb& state) {
    const auto device = Find(handle);
    return device && device->GetCommState(state);
}

bool TtySerialPort::SetCommState(CommHandle handle, const Dcb& state) {
    const auto device = Find(handle);
    return device && device->SetCommState(state);
}

bool TtySerialPort::GetCommTimeouts(CommHandle handle, CommTimeouts& timeouts) {
    const auto device = Find(handle);
    return device && device->GetCommTimeouts(timeouts);
}

bool TtySerialPort::SetCommTimeouts(CommHandle handle, const CommTimeouts& timeouts) {
    const auto device = Find(handle);
    return device && device->SetCommTimeouts(timeouts);
}

bool TtySerialPort::SetupComm(CommHandle handle, std::size_t, std::size_t) {
    const auto device = Find(handle);
    return device && device->Usable();
}

bool TtySerialPort::PurgeComm(CommHandle handle, std::uint32_t flags) {
    const auto device = Find(handle);
    return device && device->PurgeComm(flags);
}

bool TtySerialPort::SetCommMask(CommHandle handle, std::uint32_t mask) {
    const auto device = Find(handle);
    return device && device->SetCommMask(mask);
}

bool TtySerialPort::WaitCommEvent(CommHandle handle, std::uint32_t& event) {
    const auto device = Find(handle);
    return device && device->WaitCommEvent(event);
}

bool TtySerialPort::ClearCommError(CommHandle handle, std::uint32_t& errors, std::size_t& inputQueued) {
    const auto device = Find(handle);
    return device && device->ClearCommError(errors, inputQueued);
}

bool TtySerialPort::ReadFile(CommHandle handle, std::span<char> bytes, std::size_t& read) {
    const auto device = Find(handle);
    return device && device->ReadFile(bytes, read);
}

bool TtySerialPort::WriteFile(CommHandle handle, std::string_view bytes, std::size_t& written) {
    const auto device = Find(handle);
    return device && device->WriteFile(bytes, written);
}

std::shared_ptr<TtyDevice> TtySerialPort::Find(CommHandle handle) const {
    std::lock_guard lock(m_mutex);
    const auto found = m_devices.find(handle);
    return found == m_devices.end() ? nullptr : found->second;
}

}  // namespace varkel
