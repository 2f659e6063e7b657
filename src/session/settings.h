// The program's settings and the values that it exchanges with other programs through the registry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/canvas.h"
#include "platform/registry.h"
#include "session/rings.h"
#include "stores/isp_record.h"

namespace varkel {

struct SkinColors {
    ColorRef buttonFont = 0;
    ColorRef subMenu = 0;
    ColorRef edit = 0;
    ColorRef editBack = 0;
    ColorRef subTitle = 0;
    std::uint32_t subTitleSize = 0;
    std::uint32_t subTitleWeight = 0;
    std::uint32_t buttonFontWeight = 0;
    std::uint32_t buttonFontSize = 0;

    // Not configurable.
    static constexpr ColorRef highlight = 0xFF0000;
    static constexpr ColorRef disabled = 0x808080;
};

enum class PhoneBookKind { Local = 0, Sim = 1 };
// What the phonebook screen shows.
enum class PhoneBooks { Both = 0, Local = 1, Sim = 2 };

// All keys lie under HKEY_LOCAL_MACHINE. Reads never fail: what is missing, unreadable or of another type
// gives the default. Any thread.
class Settings {
  public:
    explicit Settings(Registry& registry) : m_registry(registry) {}

    // "Device\CONFIG": "g_bTTSOpen", "m_openwififlag" and "StoreSize" are created with their defaults 1, 0
    // and 1024 when they are missing; any other missing name reads 0.
    std::uint32_t ReadConfig(std::string_view name);

    // "Device\CONFIG" / "Language": one of `languageNames`, which another program has chosen; nothing when it
    // is missing or none of them.
    std::optional<std::string> ReadLanguage();

    // "GPRS\NetworkMode" and its like: a missing "Account" is created with 0, a missing "NetworkMode" with 2.
    std::uint32_t ReadDword(std::string_view key, std::string_view name);
    // On the disk when it returns true.
    bool WriteDword(std::string_view key, std::string_view name, std::uint32_t value);
    // 1 when missing, and not created: "Software\DialogType" / "Gprs".
    std::uint32_t ReadDwordOrOne(std::string_view key, std::string_view name);

    // "GPRS\OPENFLAG": whether the module is open, and whether the start opens it.
    std::uint32_t ReadOpenFlag() { return ReadFlag("m_GprsOpenFlag"); }
    bool WriteOpenFlag(std::uint32_t open) { return WriteDword(openFlagKey, "m_GprsOpenFlag", open); }
    std::uint32_t ReadAutoOpenFlag() { return ReadFlag("m_GprsAutoOpenFlag"); }
    bool WriteAutoOpenFlag(std::uint32_t open) { return WriteDword(openFlagKey, "m_GprsAutoOpenFlag", open); }

    // "GPRS\PhoneBookSet": what the phonebook screen shows ("CardDisp") and where it puts a new entry
    // ("CardSaveTo").
    PhoneBooks ReadCardDisp();
    bool WriteCardDisp(PhoneBooks shown);
    PhoneBookKind ReadCardSaveTo();
    bool WriteCardSaveTo(PhoneBookKind book);

    // "GPRS\Rings" / "CallRing" and "NoteRing": a choice of RingSound. The first when missing.
    int ReadRing(RingKind kind);
    bool WriteRing(RingKind kind, int choice);
    // "GPRS\CallRecord" / "NewMissed": missed calls that nobody has looked at.
    std::uint32_t ReadNewMissed() { return ReadDword(callRecordKey, "NewMissed"); }
    bool WriteNewMissed(std::uint32_t count) { return WriteDword(callRecordKey, "NewMissed", count); }

    // "GPRS\ISP" / "ISP_Struct": the operator in use, byte for byte; nothing when there is none of that size.
    // On the disk when the write returns true.
    std::optional<ISP_Struct> ReadIsp();
    bool WriteIsp(const ISP_Struct& isp);

    // "CharacterAttr".
    SkinColors LoadColors();

    // "Software\QXGprsSim" / "IMSI" or "IMEI". The value is one byte short of its terminator, as the other
    // programs expect it.
    bool WriteSimIdentity(std::string_view name, std::string_view text);

    // "Software\QXPhoneNum": the number that other programs left under a name, at most 260 UTF-16 units; a
    // missing or longer value gives an empty number.
    std::string ReadPhoneNumber(std::string_view name);

    static constexpr std::string_view networkModeKey = "GPRS\\NetworkMode";
    static constexpr std::string_view dialogTypeKey = "Software\\DialogType";

  private:
    static constexpr std::string_view openFlagKey = "GPRS\\OPENFLAG";
    static constexpr std::string_view ispKey = "GPRS\\ISP";
    static constexpr std::string_view ringsKey = "GPRS\\Rings";
    static constexpr std::string_view callRecordKey = "GPRS\\CallRecord";
    static constexpr std::string_view phoneBookKey = "GPRS\\PhoneBookSet";

    std::uint32_t ReadFlag(std::string_view name);
    ColorRef ReadColor(std::string_view prefix);

    Registry& m_registry;
};

}  // namespace varkel
