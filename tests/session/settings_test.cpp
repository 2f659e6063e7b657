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
    EXPECT_EQ(settings.ReadConfig("g_bTTSOpen"), 1u);
    EXPECT_EQ(settings.ReadConfig("m_openwififlag"), 0u);
    EXPECT_EQ(settings.ReadConfig("StoreSize"), 1024u);
    EXPECT_EQ(settings.ReadConfig("unheard of"), 0u);
    EXPECT_EQ(registry.Value("Device\\CONFIG", "g_bTTSOpen"), Dword(1));
    EXPECT_EQ(registry.Value("Device\\CONFIG", "m_openwififlag"), Dword(0));
    EXPECT_EQ(registry.Value("Device\\CONFIG", "StoreSize"), Dword(1024));
    EXPECT_FALSE(registry.Value("Device\\CONFIG", "unheard of"));

    EXPECT_EQ(settings.ReadDword("GPRS\\NetworkMode", "NetworkMode"), 2u);
    EXPECT_EQ(settings.ReadDword("GPRS\\NetworkMode", "Account"), 0u);
    EXPECT_EQ(registry.Value("GPRS\\NetworkMode", "NetworkMode"), Dword(2));
    EXPECT_EQ(registry.Value("GPRS\\NetworkMode", "Account"), Dword(0));

    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
    EXPECT_FALSE(registry.Value("GPRS\\OPENFLAG", "m_GprsOpenFlag"));
    EXPECT_EQ(settings.ReadDwordOrOne(Settings::dialogTypeKey, "Gprs"), 1u);
    EXPECT_FALSE(registry.Value("Software\\DialogType", "Gprs"));

    EXPECT_EQ(settings.LoadColors().buttonFont, 0u);
    EXPECT_TRUE(registry.HasKey("CharacterAttr")) << "created empty";
    EXPECT_FALSE(registry.Value("CharacterAttr", "BtnFontRed"));
}

TEST_F(SettingsTest, ReadsWhatIsThere) {
    registry.SetValue("Device\\CONFIG", "g_bTTSOpen", Dword(0));
    EXPECT_EQ(settings.ReadConfig("g_bTTSOpen"), 0u);
    EXPECT_TRUE(settings.WriteOpenFlag(1));
    EXPECT_EQ(settings.ReadOpenFlag(), 1u);
    EXPECT_EQ(settings.ReadAutoOpenFlag(), 0u);
    EXPECT_EQ(registry.Flushes(), 1) << "a written flag is on the disk";

    const char* const parts[] = {"Red", "Green", "Blue"};
    for (std::uint32_t i = 0; i < 3; ++i) {
        registry.SetValue("CharacterAttr", std::string("SubMenu") + parts[i], Dword(i + 1));
    }
    registry.SetValue("CharacterAttr", "SubTitleSize", Dword(32));
    const SkinColors colors = settings.LoadColors();
    EXPECT_EQ(colors.subMenu, 0x030201u);
    EXPECT_EQ(colors.subTitleSize, 32u);
    EXPECT_EQ(colors.subTitle, 0u);
}

TEST_F(SettingsTest, TakesAValueOfAnotherTypeForMissing) {
    registry.SetValue("GPRS\\OPENFLAG", "m_GprsOpenFlag", TextValue(u"1", 4));
    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
    registry.SetValue("GPRS\\OPENFLAG", "m_GprsOpenFlag", {RegistryType::Dword, {std::byte{1}}});
    EXPECT_EQ(settings.ReadOpenFlag(), 0u);
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
    EXPECT_EQ(registry.Flushes(), 1);
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

TEST_F(SettingsTest, ReadsANumberOfAnotherProgram) {
    EXPECT_EQ(settings.ReadPhoneNumber("SOS"), "");
    registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(u"112", 8));
    EXPECT_EQ(settings.ReadPhoneNumber("SOS"), "112");
    registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(std::u16string(260, u'1'), 520));
    EXPECT_EQ(settings.ReadPhoneNumber("SOS").size(), 260u);
    registry.SetValue("Software\\QXPhoneNum", "SOS", TextValue(std::u16string(261, u'1'), 522));
    EXPECT_EQ(settings.ReadPhoneNumber("SOS"), "");
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
