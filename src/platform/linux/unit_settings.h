// The unit file: what the program must know of the unit that it runs on.
//
//     [unit]
//     root = flash                        the unit's flash: volumes such as NandFlash are directories in it
//     assets = /usr/share/varkel/assets   the installed read-only files of the same shape
//     palette = night                     of the screens: night, day, or auto for day from 7 to 19 o'clock
//     language = english                  english, chinese, tchinese, russian, portugal, arabic
//     system_code_page = GB18030          of texts in languages without one of their own; as iconv names it
//     country_code = 86                   put in front of national numbers of messages; none when it is empty
//     registry = registry.db
//     initial_registry = registry.txt     values that a registry begins with; none when it is not named
//     object_prefix = varkel-1000         programs with the same prefix share memory, mutexes and events
//     bus = session                       session, system, none, or an address such as unix:path=/run/bus
//     driver = board                      board (the section [driver]) or bus (another program)
//     dial_up = /usr/sbin/pppd            the program that dials, see pppd_dial_up.h
//     ping = 10.0.0.1, 10.0.0.2           hosts that a link test asks; none: the link's other end
//
//     [serial]
//     COM7: = /dev/ttyUSB2                device name and tty
//
//     [modem]
//     profile = unit                      unit: the module that the unit is made with; standard: any other
//                                         one; auto: whichever answers
//
//     [driver]                            see board_kovex_drv.h
//
//     [programs]
//     \ResidentFlash2\bin\IE\IE.exe = x-www-browser about:blank      device path and command
//
// A relative path starts at the unit file's directory.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/board_kovex_drv.h"
#include "platform/linux/bus.h"
#include "platform/linux/skin.h"

namespace varkel {

enum class DriverKind { Board, Bus };
enum class ModemKind { Unit, Standard, Auto };

struct UnitSettings {
    std::string root;
    std::string assets;
    PaletteChoice palette = PaletteChoice::Night;
    std::string language;
    std::string systemCodePage;
    std::string countryCode;
    std::string registry;
    std::string initialRegistry;
    std::string objectPrefix;
    BusOptions bus;
    DriverKind driver = DriverKind::Board;
    BoardAnswers board;
    ModemKind modem = ModemKind::Unit;
    std::vector<std::string> dialUp;                           // a command
    std::vector<std::string> pingAddresses;                    // IPv4 in numbers, at most 8
    std::map<std::string, std::string> serial;                 // by device name, in capitals
    std::map<std::string, std::vector<std::string>> programs;  // by PlainDevicePath
    std::vector<std::string> errors;  // "line 3: ..." each; what they are about keeps its default

    // "" when the device has no tty.
    std::string TtyOf(std::string_view deviceName) const;
};

// What holds without a unit file: the unit lies in the user's data directory (XDG_DATA_HOME/varkel), the
// modem is /dev/ttyUSB2, the driver is the board with nothing said.
UnitSettings DefaultUnitSettings();

// `directory` is where relative paths start.
UnitSettings ParseUnitSettings(std::string_view text, const std::string& directory);

// The user's own unit file, XDG_CONFIG_HOME/varkel/unit.conf, or the defaults when there is none.
UnitSettings UserUnitSettings();

// Reads the file; when it cannot be read the defaults hold and `errors` says so.
UnitSettings LoadUnitSettings(const std::string& path);

}  // namespace varkel
