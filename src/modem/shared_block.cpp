#include "modem/shared_block.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

constexpr const char* mappingName = "SAFE_MEM_DATA_FILE";
constexpr const char* mutexName = "SAFE_MEM_DATA_FILE MUTEX";
constexpr const char* responseName = "CGSMData RESP EVENT";
constexpr Ticks lockTimeout = 5000;

// The rest of the field is filled with NULs.
template <std::size_t Units>
void Put(char16_t (&field)[Units], std::string_view text) {
    const std::u16string units = Utf16FromUtf8(text).substr(0, Units - 1);
    std::memset(field, 0, sizeof field);
    std::copy(units.begin(), units.end(), field);
}

}  // namespace

CSharedBlock::CSharedBlock(NamedObjects& objects, Log& log, std::string_view mapping, std::string_view mutex,
                           std::size_t bytes, Ticks timeout)
    : m_objects(objects), m_log(log), m_mutex(objects.CreateMutex(mutex)), m_lockTimeout(timeout) {
    if (!m_mutex) m_log.DebugOutput("Could not aquire info file mutex handle\n");
    m_mapping = objects.CreateFileMapping(mapping, bytes);
    if (!m_mapping) {
        m_log.DebugOutput("Could not create file mapping for battery info file\r\n");
        return;
    }
    const std::span<std::byte> view = m_mapping->MapViewOfFile();
    if (view.size() < bytes) {
        m_log.DebugOutput("Can't map view of memory mapped file\r\n");
        m_mapping.reset();
        return;
    }
    m_view = view.data();
}

CSharedBlock::~CSharedBlock() = default;

bool CSharedBlock::Lock() {
    const WaitResult result = m_mutex ? m_mutex->Wait(m_lockTimeout) : WaitResult::Failed;
    if (result == WaitResult::Object0) return true;
    m_log.DebugOutput(
        "Wait for single object did not return WAIT_OBJECT_0  returned %d, Get last error returns %d\n",
        static_cast<int>(result), static_cast<int>(m_objects.GetLastError()));
    return false;
}

bool CSharedBlock::Unlock() {
    if (m_mutex && m_mutex->ReleaseMutex()) return true;
    m_log.DebugOutput("Release Mutex failed with error %d. \n", static_cast<int>(m_objects.GetLastError()));
    return false;
}

CGSMData::CGSMData(NamedObjects& objects, Log& log)
    : CSharedBlock(objects, log, mappingName, mutexName, sizeof(GsmDataLayout), lockTimeout),
      m_response(objects.CreateEvent(responseName)) {}

template <class Action>
bool CGSMData::Change(Action action) {
    if (!View() || !Lock()) return false;
    action(*static_cast<GsmDataLayout*>(View()));
    Unlock();
    return true;
}

bool CGSMData::SetWindowHandle(std::uint32_t window) {
    return Change([window](GsmDataLayout& block) { block.windowHandle = window; });
}

bool CGSMData::SetConnectionStatus(ConnectionStatus status) {
    return Change(
        [status](GsmDataLayout& block) { block.connectionStatus = static_cast<std::uint32_t>(status); });
}

bool CGSMData::AnswerImsi(std::string_view imsi) {
    return Change([&](GsmDataLayout& block) {
        Put(block.imsi, imsi);
        SignalResponse();
    });
}

bool CGSMData::AnswerImei(std::string_view imei) {
    return Change([&](GsmDataLayout& block) {
        Put(block.imei, imei);
        SignalResponse();
    });
}

bool CGSMData::Clear() {
    return Change([](GsmDataLayout& block) {
        block.connectionStatus = static_cast<std::uint32_t>(ConnectionStatus::Unknown);
        std::memset(block.imsi, 0, sizeof block.imsi);
        std::memset(block.imei, 0, sizeof block.imei);
    });
}

void CGSMData::SignalResponse() {
    if (m_response) m_response->Set();
}

}  // namespace varkel
