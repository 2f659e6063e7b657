#include "session/settings.h"

#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "session/registry_values.h"
#include "session/value_table.h"
#include "tests/support/memory_registry.h"
#include "tests/support/recorded_notices.h"

namespace varkel::test {
namespace {

RegistryValue Dword(std::uint32_t value) {
    RegistryValue dword{RegistryType::Dword, {}};
    for (const int shift : {0, 8, 16, 24})
        dword.bytes.push_back(static_cast<std::byte>(value >> shift));
    return dword;
}

struct SettingsTest : testing::Test {
    MemoryRegistry registry;
    Settings settings{registry};
};

TEST_F(SettingsTest, CreatesDefaultsWhereStatedAndNowhereElse) {
    const std::pair<const char*, std::uint32_t> config[] = {
        {"g_bTTSOpen", 1}, {"m_openwififlag", 0}, {"StoreSize", 1024}};
    for (const auto& [name, value] : config) {
        EXPECT_EQ(settings.ReadConfig(name), value) << name;
        EXPECT_EQ(registry.Value("Device\\CONFIG", name), Dword(value)) << name;
    }
    EXPECT_EQ(settings.ReadConfig("unheard of"), 0u);
    EXPECT_FALSE(registry.Value("Device\\CONFIG", "unheard of"));
    const std::pair<const char*, std::uint32_t> modes[] = {{"NetworkMode", 2}, {"Account", 0}};
    for (const auto& [name, value] : modes) {
        EXPECT_EQ(settings.ReadDword("GPRS\\NetworkMode", name), value) << name;
        EXPECT_EQ(registry.Value("GPRS\\NetworkMode", name), Dword(value)) << name;
    }
    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
    EXPECT_FALSE(registry.Value("GPRS\\OPENFLAG", "m_GprsOpenFlag"));
    EXPECT_EQ(settings.ReadDwordOrOne(Settings::dialogTypeKey, "Gprs"), 1u);
    EXPECT_FALSE(registry.Value("Software\\DialogType", "Gprs"));
    EXPECT_EQ(settings.LoadColors().subMenu, 0u);
    EXPECT_FALSE(registry.Value("CharacterAttr", "SubMenuRed"));
    settings.WriteDword("CharacterAttr", "SubMenuRed", 1);
    settings.WriteDword("CharacterAttr", "SubMenuBlue", 3);
    EXPECT_EQ(settings.LoadColors().subMenu, 0x030001u);
}

TEST_F(SettingsTest, TakesForMissingWhatItCannotRead) {
    EXPECT_TRUE(settings.WriteOpenFlag(1));
    EXPECT_EQ(registry.flushes, 1) << "a written flag is on the disk";
    EXPECT_EQ(settings.ReadOpenFlag(), 1u);
    registry.SetValue("GPRS\\OPENFLAG", "m_GprsOpenFlag", TextValue(u"1", 4));
    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
    registry.SetValue("GPRS\\OPENFLAG", "m_GprsOpenFlag", {RegistryType::Dword, {std::byte{1}}});
    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
    EXPECT_TRUE(settings.WriteCardSaveTo(PhoneBookKind::Sim));
    EXPECT_EQ(settings.ReadCardSaveTo(), PhoneBookKind::Sim);
    settings.WriteDword("GPRS\\PhoneBookSet", "CardSaveTo", 7);
    EXPECT_EQ(settings.ReadCardSaveTo(), PhoneBookKind::Local);
    for (const std::size_t units : {260u, 261u}) {
        registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(std::u16string(units, u'1'), units * 2));
        EXPECT_EQ(settings.ReadPhoneNumber("SOS").size(), units == 260 ? units : 0);
    }
    registry.refuse = true;
    EXPECT_EQ(settings.ReadConfig("StoreSize"), 1024u);
    EXPECT_EQ(settings.ReadDwordOrOne(Settings::dialogTypeKey, "Gprs"), 1u);
    EXPECT_FALSE(settings.WriteOpenFlag(1));
    EXPECT_FALSE(settings.WriteSimIdentity("IMSI", "1"));
    EXPECT_EQ(settings.ReadPhoneNumber("SOS"), "");
}

TEST_F(SettingsTest, KeepsTheOperatorAsTheBytesOfItsRecord) {
    EXPECT_FALSE(settings.ReadIsp());
    ISP_Struct isp = DefaultIsp();
    isp.password.Assign("p");
    ASSERT_TRUE(settings.WriteIsp(isp));
    EXPECT_EQ(registry.flushes, 1);
    auto value = registry.Value("GPRS\\ISP", "ISP_Struct");
    ASSERT_TRUE(value);
    EXPECT_EQ(value->type, RegistryType::Binary);
    ASSERT_EQ(value->bytes.size(), 768u);
    EXPECT_EQ(std::memcmp(value->bytes.data() + 384, "CMNET\0", 6), 0);
    const auto read = settings.ReadIsp();
    ASSERT_TRUE(read);
    EXPECT_EQ(std::memcmp(&*read, &isp, sizeof isp), 0);

    for (const std::size_t size : {0u, 767u, 769u}) {
        value->bytes.resize(size);
        registry.SetValue("GPRS\\ISP", "ISP_Struct", *value);
        EXPECT_FALSE(settings.ReadIsp()) << size;
    }
    registry.refuseWrites = true;
    EXPECT_FALSE(settings.WriteIsp(isp));
}

TEST_F(SettingsTest, KeepsAValueTableAsAWhole) {
    RecordedNotices notices;
    ValueTable table = CallStateValues(registry, notices);
    table.Set("HookDialed", "0");
    ASSERT_TRUE(table.Load()) << "a new key gets the present values";
    EXPECT_EQ(registry.Value("Software\\Varkel", "HookDialed"), TextValue(u"0", 4));
    EXPECT_EQ(registry.Value("Software\\Varkel", "CallStatus"), TextValue(u"", 2));

    registry.SetValue("Software\\Varkel", "CallStatus", TextValue(u"13800138000", 24));
    ASSERT_TRUE(table.Load());
    EXPECT_EQ(table.Get("CallStatus"), "13800138000");
    table.Set("CallStatus", std::string(600, 'x'));
    EXPECT_EQ(table.Get("CallStatus").size(), 499u);
    ASSERT_TRUE(table.Save());
    ASSERT_TRUE(table.Load()) << "what was saved at its longest can be read again";
    EXPECT_TRUE(notices.Boxes().empty());

    registry.SetValue("Software\\Varkel", "HookDialed", Dword(1));
    EXPECT_FALSE(table.Load());
    EXPECT_EQ(table.Get("HookDialed"), "");
    registry.refuseWrites = true;
    EXPECT_FALSE(table.Save());
    registry.refuse = true;
    EXPECT_FALSE(table.Load());
    EXPECT_EQ(table.Get("CallStatus").size(), 499u) << "what is known stays";
    EXPECT_THAT(notices.Boxes(), testing::ElementsAre("|load failed")) << "of a value, not of the registry";
}

}  // namespace
}  // namespace varkel::test
