#include "session/settings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <utility>

#include "platform/language.h"
#include "platform/text.h"
#include "session/registry_values.h"

namespace varkel {

namespace {

struct Default {
    std::string_view name;
    std::uint32_t value;
};

// The values that a failed read creates.
constexpr std::array<Default, 3> configDefaults{
    {{"g_bTTSOpen", 1}, {"m_openwififlag", 0}, {"StoreSize", 1024}}};
constexpr std::array<Default, 2> networkDefaults{{{"Account", 0}, {"NetworkMode", 2}}};

constexpr std::string_view configKey = "Device\\CONFIG";
constexpr std::size_t phoneNumberBytes = 520;

std::unique_ptr<RegistryKey> OpenKey(Registry& registry, std::string_view key) {
    bool created = false;
    return registry.RegCreateKeyEx(key, created);
}

template <std::size_t Count>
std::uint32_t ReadOrCreate(Registry& registry, std::string_view keyName, std::string_view name,
                           const std::array<Default, Count>& defaults) {
    const auto key = OpenKey(registry, keyName);
    if (key) {
        if (const auto value = QueryDword(*key, name)) return *value;
    }
    for (const Default& standard : defaults) {
        if (standard.name != name) continue;
        if (key) SetDword(*key, name, standard.value);
        return standard.value;
    }
    return 0;
}

constexpr std::string_view RingName(RingKind kind) {
    return kind == RingKind::Call ? "CallRing" : "NoteRing";
}

}  // namespace

std::uint32_t Settings::ReadConfig(std::string_view name) {
    return ReadOrCreate(m_registry, configKey, name, configDefaults);
}

std::optional<std::string> Settings::ReadLanguage() {
    constexpr std::size_t longest = 32;  // bytes
    const auto key = OpenKey(m_registry, configKey);
    const auto name = key ? QueryText(*key, "Language", longest) : std::nullopt;
    const bool known =
        name && std::find(languageNames.begin(), languageNames.end(), *name) != languageNames.end();
    return known ? name : std::nullopt;
}

std::uint32_t Settings::ReadDword(std::string_view key, std::string_view name) {
    return ReadOrCreate(m_registry, key, name, networkDefaults);
}

bool Settings::WriteDword(std::string_view keyName, std::string_view name, std::uint32_t value) {
    const auto key = OpenKey(m_registry, keyName);
    return key && SetDword(*key, name, value) && m_registry.RegFlushKey();
}

std::uint32_t Settings::ReadDwordOrOne(std::string_view keyName, std::string_view name) {
    const auto key = OpenKey(m_registry, keyName);
    return key ? QueryDword(*key, name).value_or(1) : 1;
}

std::uint32_t Settings::ReadFlag(std::string_view name) {
    const auto key = OpenKey(m_registry, openFlagKey);
    return key ? QueryDword(*key, name).value_or(0) : 0;
}

PhoneBooks Settings::ReadCardDisp() {
    const auto value = static_cast<PhoneBooks>(ReadDword(phoneBookKey, "CardDisp"));
    return value == PhoneBooks::Local || value == PhoneBooks::Sim ? value : PhoneBooks::Both;
}

bool Settings::WriteCardDisp(PhoneBooks shown) {
    return WriteDword(phoneBookKey, "CardDisp", static_cast<std::uint32_t>(shown));
}

PhoneBookKind Settings::ReadCardSaveTo() {
    const auto value = static_cast<PhoneBookKind>(ReadDword(phoneBookKey, "CardSaveTo"));
    return value == PhoneBookKind::Sim ? value : PhoneBookKind::Local;
}

bool Settings::WriteCardSaveTo(PhoneBookKind book) {
    return WriteDword(phoneBookKey, "CardSaveTo", static_cast<std::uint32_t>(book));
}

int Settings::ReadRing(RingKind kind) {
    const std::uint32_t choice = ReadDword(ringsKey, RingName(kind));
    return choice < ringChoices ? static_cast<int>(choice) : 0;
}

bool Settings::WriteRing(RingKind kind, int choice) {
    return WriteDword(ringsKey, RingName(kind), static_cast<std::uint32_t>(choice));
}

std::optional<ISP_Struct> Settings::ReadIsp() {
    const auto key = OpenKey(m_registry, ispKey);
    const auto value = key ? key->RegQueryValueEx("ISP_Struct") : std::nullopt;
    if (!value || value->type != RegistryType::Binary || value->bytes.size() != sizeof(ISP_Struct))
        return std::nullopt;
    ISP_Struct isp;
    std::memcpy(&isp, value->bytes.data(), sizeof isp);
    return isp;
}

bool Settings::WriteIsp(const ISP_Struct& isp) {
    const auto bytes = std::as_bytes(std::span(&isp, 1));
    const auto key = OpenKey(m_registry, ispKey);
    return key && key->RegSetValueEx("ISP_Struct", {RegistryType::Binary, {bytes.begin(), bytes.end()}}) &&
           m_registry.RegFlushKey();
}

ColorRef Settings::ReadColor(std::string_view prefix) {
    const auto key = OpenKey(m_registry, "CharacterAttr");
    if (!key) return 0;
    const auto part = [&](const char* suffix) {
        return QueryDword(*key, std::string(prefix) + suffix).value_or(0);
    };
    return part("Red") + part("Green") * 256 + part("Blue") * 65536;
}

SkinColors Settings::LoadColors() {
    SkinColors colors;
    colors.buttonFont = ReadColor("BtnFont");
    colors.subMenu = ReadColor("SubMenu");
    colors.edit = ReadColor("Edit");
    colors.editBack = ReadColor("EditBack");
    colors.subTitle = ReadColor("SubTitle");
    const auto key = OpenKey(m_registry, "CharacterAttr");
    if (!key) return colors;
    colors.subTitleSize = QueryDword(*key, "SubTitleSize").value_or(0);
    colors.subTitleWeight = QueryDword(*key, "SubTitleWeight").value_or(0);
    colors.buttonFontWeight = QueryDword(*key, "BTBtnFontWeight").value_or(0);
    colors.buttonFontSize = QueryDword(*key, "BTBtnFontSize").value_or(0);
    return colors;
}

bool Settings::WriteSimIdentity(std::string_view name, std::string_view text) {
    const std::u16string units = Utf16FromUtf8(text);
    bool written = false;
    if (const auto key = OpenKey(m_registry, "Software\\QXGprsSim")) {
        written = key->RegSetValueEx(name, TextValue(units, units.size() * 2 + 1));
    }
    return m_registry.RegFlushKey() && written;
}

std::string Settings::ReadPhoneNumber(std::string_view name) {
    const auto key = OpenKey(m_registry, "Software\\QXPhoneNum");
    return key ? QueryText(*key, name, phoneNumberBytes).value_or("") : "";
}

}  // namespace varkel
