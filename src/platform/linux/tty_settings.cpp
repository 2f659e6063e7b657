#include "platform/linux/tty_settings.h"

#include <algorithm>
#include <iterator>

namespace varkel {

namespace {

struct Speed {
    std::uint32_t baud;
    speed_t code;
};

constexpr Speed speeds[] = {
    {300, B300},         {600, B600},         {1200, B1200},       {2400, B2400},       {4800, B4800},
    {9600, B9600},       {19200, B19200},     {38400, B38400},     {57600, B57600},     {115200, B115200},
    {230400, B230400},   {460800, B460800},   {500000, B500000},   {576000, B576000},   {921600, B921600},
    {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000}, {2000000, B2000000}, {2500000, B2500000},
    {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000},
};

struct ByteSize {
    std::uint8_t bits;
    tcflag_t code;
};

constexpr ByteSize byteSizes[] = {{5, CS5}, {6, CS6}, {7, CS7}, {8, CS8}};

// NOPARITY, ODDPARITY, EVENPARITY, MARKPARITY, SPACEPARITY.
constexpr tcflag_t parities[] = {0, PARENB | PARODD, PARENB, PARENB | PARODD | CMSPAR, PARENB | CMSPAR};
constexpr tcflag_t parityFlags = PARENB | PARODD | CMSPAR;
constexpr tcflag_t frameFlags = CSIZE | CSTOPB | parityFlags;

void SetFlag(tcflag_t& flags, tcflag_t flag, bool on) {
    flags = on ? flags | flag : flags & ~flag;
}

}  // namespace

Dcb DcbFromTermios(const termios& settings) {
    Dcb state;
    const auto speed = std::find_if(std::begin(speeds), std::end(speeds),
                                    [&](const Speed& entry) { return entry.code == cfgetospeed(&settings); });
    if (speed != std::end(speeds)) state.BaudRate = speed->baud;
    for (const ByteSize& size : byteSizes) {
        if ((settings.c_cflag & CSIZE) == size.code) state.ByteSize = size.bits;
    }
    for (std::size_t parity = 0; parity < std::size(parities); ++parity) {
        if ((settings.c_cflag & parityFlags) == parities[parity])
            state.Parity = static_cast<std::uint8_t>(parity);
    }
    state.StopBits = (settings.c_cflag & CSTOPB) != 0 ? 2 : 0;
    state.fBinary = true;
    state.fOutxCtsFlow = (settings.c_cflag & CRTSCTS) != 0;
    state.fOutX = (settings.c_iflag & IXON) != 0;
    state.fInX = (settings.c_iflag & IXOFF) != 0;
    return state;
}

bool ApplyDcb(const Dcb& state, termios& settings) {
    const auto speed = std::find_if(std::begin(speeds), std::end(speeds),
                                    [&](const Speed& entry) { return entry.baud == state.BaudRate; });
    const auto size = std::find_if(std::begin(byteSizes), std::end(byteSizes),
                                   [&](const ByteSize& entry) { return entry.bits == state.ByteSize; });
    // One and a half stop bits (1) are the UART's own choice for five data bits; no modem uses them.
    if (speed == std::end(speeds) || size == std::end(byteSizes) || state.Parity >= std::size(parities) ||
        (state.StopBits != 0 && state.StopBits != 2))
        return false;

    cfsetispeed(&settings, speed->code);
    cfsetospeed(&settings, speed->code);
    settings.c_cflag &= ~frameFlags;
    settings.c_cflag |= size->code | parities[state.Parity];
    SetFlag(settings.c_cflag, CSTOPB, state.StopBits == 2);
    SetFlag(settings.c_cflag, CRTSCTS, state.fOutxCtsFlow);
    SetFlag(settings.c_iflag, IXON, state.fOutX);
    SetFlag(settings.c_iflag, IXOFF, state.fInX);
    return true;
}

void MakeRaw(termios& settings) {
    cfmakeraw(&settings);
    // CLOCAL: a modem that lowers its carrier detect must not hang the line up.
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_iflag &= ~static_cast<tcflag_t>(INPCK | IXOFF);
    // With VMIN 0 an empty line would read as 0 bytes, which is how a hang-up reads.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
}

bool SameLine(const termios& asked, const termios& taken) {
    return cfgetospeed(&asked) == cfgetospeed(&taken) &&
           (asked.c_cflag & frameFlags) == (taken.c_cflag & frameFlags);
}

}  // namespace varkel
