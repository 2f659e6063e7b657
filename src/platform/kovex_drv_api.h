// The head unit's driver library: power, SIM and link status, audio routing, suspend locks.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace varkel {

// Every function of the library, in one table: what a backend must answer, and the simulated unit exports.
enum class DrvFunction {
    Get3GPower,
    Set3GPower,
    SetTmcPower,
    Get3GSimStatus,
    GetUsbHostStatus,
    GetSDCardStatus,
    GetCurrentPowerValue,
    GetMainHandle,
    RequireDisableKeySuspend,
    RequireDisableAutoSuspend,
    ReleaseDisableKeySuspend,
    ReleaseDisableAutoSuspend,
    SetAudioTo3G,
    SendGprs3gHandfreeMsgToAudio,
    GetGprsHpSpkStatus,
    SetGprsHpSpkStatus,
    RestartMachine,
};

enum class DrvKind { Get, Set, Action };

struct DrvEntry {
    DrvFunction function;
    DrvKind kind;
    std::string_view name;
};

inline constexpr std::array<DrvEntry, 17> drvTable{{
    {DrvFunction::Get3GPower, DrvKind::Get, "Get3GPower"},
    {DrvFunction::Set3GPower, DrvKind::Set, "Set3GPower"},
    {DrvFunction::SetTmcPower, DrvKind::Set, "SetTmcPower"},
    {DrvFunction::Get3GSimStatus, DrvKind::Get, "Get3GSimStatus"},
    {DrvFunction::GetUsbHostStatus, DrvKind::Get, "GetUsbHostStatus"},
    {DrvFunction::GetSDCardStatus, DrvKind::Get, "GetSDCardStatus"},
    {DrvFunction::GetCurrentPowerValue, DrvKind::Get, "GetCurrentPowerValue"},
    {DrvFunction::GetMainHandle, DrvKind::Get, "GetMainHandle"},
    {DrvFunction::RequireDisableKeySuspend, DrvKind::Action, "RequireDisableKeySuspend"},
    {DrvFunction::RequireDisableAutoSuspend, DrvKind::Action, "RequireDisableAutoSuspend"},
    {DrvFunction::ReleaseDisableKeySuspend, DrvKind::Action, "ReleaseDisableKeySuspend"},
    {DrvFunction::ReleaseDisableAutoSuspend, DrvKind::Action, "ReleaseDisableAutoSuspend"},
    {DrvFunction::SetAudioTo3G, DrvKind::Set, "SetAudioTo3G"},
    {DrvFunction::SendGprs3gHandfreeMsgToAudio, DrvKind::Set, "SendGprs3gHandfreeMsgToAudio"},
    {DrvFunction::GetGprsHpSpkStatus, DrvKind::Get, "GetGprsHpSpkStatus"},
    {DrvFunction::SetGprsHpSpkStatus, DrvKind::Set, "SetGprsHpSpkStatus"},
    {DrvFunction::RestartMachine, DrvKind::Action, "RestartMachine"},
}};

// The functions under their names. Each returns false when the library could not carry it out, and a getter
// then leaves its out-value alone. Any thread; none waits longer than `longestCall`.
class KovexDrvApi {
  public:
    virtual ~KovexDrvApi() = default;

    bool Get3GPower(int& on) { return Call(DrvFunction::Get3GPower, on); }
    bool Set3GPower(int on) { return Call(DrvFunction::Set3GPower, on); }
    bool SetTmcPower(int on) { return Call(DrvFunction::SetTmcPower, on); }
    bool Get3GSimStatus(int& inserted) { return Call(DrvFunction::Get3GSimStatus, inserted); }
    bool GetUsbHostStatus(int& present) { return Call(DrvFunction::GetUsbHostStatus, present); }
    bool GetSDCardStatus(int& present) { return Call(DrvFunction::GetSDCardStatus, present); }
    bool GetCurrentPowerValue(int& value) { return Call(DrvFunction::GetCurrentPowerValue, value); }
    bool GetMainHandle(int& window) { return Call(DrvFunction::GetMainHandle, window); }
    bool RequireDisableKeySuspend() { return Do(DrvFunction::RequireDisableKeySuspend); }
    bool RequireDisableAutoSuspend() { return Do(DrvFunction::RequireDisableAutoSuspend); }
    bool ReleaseDisableKeySuspend() { return Do(DrvFunction::ReleaseDisableKeySuspend); }
    bool ReleaseDisableAutoSuspend() { return Do(DrvFunction::ReleaseDisableAutoSuspend); }
    bool SetAudioTo3G(int on) { return Call(DrvFunction::SetAudioTo3G, on); }
    bool SendGprs3gHandfreeMsgToAudio(int on) { return Call(DrvFunction::SendGprs3gHandfreeMsgToAudio, on); }
    bool GetGprsHpSpkStatus(int& on) { return Call(DrvFunction::GetGprsHpSpkStatus, on); }
    bool SetGprsHpSpkStatus(int on) { return Call(DrvFunction::SetGprsHpSpkStatus, on); }
    bool RestartMachine() { return Do(DrvFunction::RestartMachine); }

    static constexpr unsigned longestCall = 1000;  // ms

  protected:
    // `value` is the argument of a setter, the result of a getter and of no meaning to an action.
    virtual bool Call(DrvFunction function, int& value) = 0;

  private:
    bool Do(DrvFunction function) {
        int none = 0;
        return Call(function, none);
    }
};

}  // namespace varkel
