// The settings screens on the simulated unit, through touches.
#include <gmock/gmock.h>

#include "tests/ui/screen_test.h"
#include "ui/screens/center_dlg.h"
#include "ui/screens/isp_dlg.h"
#include "ui/screens/network_set_dlg.h"
#include "ui/screens/settings_dlg.h"
#include "ui/toolkit/check_box.h"
#include "ui/toolkit/edit_field.h"

namespace varkel::test {
namespace {

using testing::ElementsAre;
using Dlg = CSettingsDlg;

constexpr Point modemOn{166, 307}, modemOff{450, 307}, operatorsTab{300, 90};
constexpr Point only2G{282, 301}, automatic{282, 435};

struct SettingsScreen : ScreenTest {
    void OpenModule() {
        dialog->OpenModule(false);
        ASSERT_TRUE(RunUntilOpenEnds());
        RunFor(3000);
        unit.TakeTrace();
    }
    // Opens the screen, does the steps and closes it; answers what it leaves, which is carried out.
    std::string Show(std::vector<Step> steps, Ticks pause = 20) {
        CSettingsDlg screen(*context);
        screen.Show();
        steps.push_back(Tap(Dlg::exitId));
        Play(steps, pause);
        const ChangeRequests& requests = screen.Requests();
        dialog->CarryOut(requests);
        return std::string(requests.turnOn ? "on " : "") + (requests.turnOff ? "off " : "") +
               (requests.closeData ? "close " : "") + (requests.openData ? "open " : "");
    }
    Step Fill(int field, const std::string& text) {
        return [this, field, text] {
            auto& edit = desktop.Active()->Get<EditField>(field);
            edit.SetWindowText("");
            desktop.Active()->SetFocus(&edit);
            display.Key({KeyCode::None, text});
        };
    }
    bool Checked(int id) { return desktop.Active()->Get<CheckBox>(id).IsChecked(); }
    ValueTable Volume() {
        ValueTable table = VolumeValues(registry, notices);
        EXPECT_TRUE(table.Load());
        return table;
    }
    void StoreVolume(const std::string& level) {
        ValueTable table = Volume();
        table.Set("GPRSVol", level);
        EXPECT_TRUE(table.Save());
    }
};

TEST_F(SettingsScreen, TheVolumeStaysInItsRangeAndIsKeptAndSent) {
    struct Case {
        std::string stored;
        int button;
        std::string kept;
    };
    const Case cases[] = {{"5", Dlg::volumeUpId, "5"},   {"4", Dlg::volumeUpId, "5"},
                          {"0", Dlg::volumeDownId, "0"}, {"1", Dlg::volumeDownId, "0"},
                          {"99", Dlg::volumeUpId, "5"},  {"-7", Dlg::volumeUpId, "1"},
                          {"loud", Dlg::volumeUpId, "4"}};
    OpenModule();
    for (const Case& test : cases) {
        StoreVolume(test.stored);
        unit.TakeTrace();
        Show({Tap(test.button)});
        RunFor(100);
        EXPECT_EQ(Volume().Get("GPRSVol"), test.kept) << test.stored;
        EXPECT_EQ(unit.Count("AT+CLVL=" + test.kept), 1) << test.stored;
    }
    StoreVolume("2");
    unit.TakeTrace();
    Show({}, 1000);
    EXPECT_EQ(unit.Count("AT+CLVL=2"), 1) << "sent when the screen opens";
    EXPECT_GE(unit.Count("AT+CSQ"), 1) << "which asks for the signal too";
}

TEST_F(SettingsScreen, ClosingWithoutAChangeAsksForNothing) {
    EXPECT_EQ(Show({}), "");
    OpenModule();
    EXPECT_EQ(Show({}), "");
    // To and fro is no change either; the modem's way takes the data link along.
    EXPECT_EQ(Show({Tap(modemOff), Tap(modemOn), Tap(Dlg::dataId)}), "");
    EXPECT_EQ(Settings(registry).ReadAutoOpenFlag(), 0u);
    EXPECT_EQ(Show({Tap(Dlg::autoOpenId)}), "");
    EXPECT_EQ(Settings(registry).ReadAutoOpenFlag(), 1u);
}

TEST_F(SettingsScreen, TheModemIsSwitchedOnWithTheDataLinkOrWithout) {
    for (const bool withData : {true, false}) {
        dialUp.connects = true;
        dialUp.ForgetDialled();
        std::vector<Step> steps = {Tap(modemOn), [&] { EXPECT_TRUE(Checked(Dlg::dataId)); }};
        if (!withData) steps.push_back(Tap(Dlg::dataId));
        EXPECT_EQ(Show(steps), withData ? "on open " : "on ");
        ASSERT_TRUE(RunUntilOpenEnds());
        RunFor(5000);
        EXPECT_EQ(dialUp.Dialled().size(), withData ? 1u : 0u);
        const auto dataFollows = [&] {
            EXPECT_FALSE(Checked(Dlg::dataId) || Enabled(*desktop.Active(), Dlg::dataId));
        };
        EXPECT_EQ(Show({Tap(modemOff), dataFollows}), withData ? "off close " : "off ");
        EXPECT_TRUE(RunUntil([&] { return !dialog->State().m_bModuleOpen; }, 20'000));
        RunFor(5000);
        EXPECT_EQ(dialUp.Current(), RasHandle::None);
    }
}

TEST_F(SettingsScreen, AnUntouchedBoxFollowsTheDataLink) {
    OpenModule();
    EXPECT_EQ(Show({Tap(Dlg::dataId)}), "open ");
    RunFor(5000);
    dialUp.Report(RasState::Connected);
    RunFor(100);
    const auto follows = [&] {
        EXPECT_TRUE(Checked(Dlg::dataId));
        EXPECT_EQ(TextOf(*desktop.Active(), Dlg::dataTextId), "Connected");
    };
    EXPECT_EQ(Show({follows, [&] { dialUp.Report(RasState::Disconnected); }}, 4000), "");
}

TEST_F(SettingsScreen, ACallTakesWhatWasChosenAndTheOtherScreens) {
    OpenModule();
    const auto ring = [&] { unit.Command("call 13800138000"); };
    const auto taken = [&] {
        const Dialog& screen = *desktop.Active();
        EXPECT_FALSE(Visible(screen, Dlg::modemId) || Visible(screen, Dlg::dataId));
        EXPECT_EQ(screen.Get<Control>(Dlg::autoOpenId).Place().y, screen.Get<Control>(Dlg::modemId).Place().y)
            << "without a gap";
        EXPECT_FALSE(Enabled(screen, Dlg::centerId) || Enabled(screen, Dlg::networkId));
    };
    EXPECT_EQ(Show({Tap(modemOff), ring, [&] { desktop.OnSessionChanged(); }, taken, Tap(modemOff)}, 500),
              "");
    EXPECT_TRUE(dialog->Calls().Busy());
}

TEST_F(SettingsScreen, ARingIsHeardWhenItIsChosenAndPlayedFromThenOn) {
    OpenModule();
    sound.Forget();
    Show({Tap(Dlg::callRingId), Tap(Dlg::noteRingId), Tap(Dlg::noteRingId), Tap(Dlg::noteRingId)});
    EXPECT_THAT(sound.Played(),
                ElementsAre("\\ResidentFlash2\\bin\\ring2.wav", "\\ResidentFlash2\\bin\\msg2.wav",
                            "\\ResidentFlash2\\bin\\msg3.wav", "", ""));
    sound.Forget();
    unit.Command("call 13800138000");
    RunFor(500);
    EXPECT_THAT(sound.Played(), ElementsAre("\\ResidentFlash2\\bin\\ring2.wav"));
}

TEST_F(SettingsScreen, AServiceCentreThatCannotBeUsedStaysInItsField) {
    OpenModule();
    std::string shown;
    const auto note = [&] { shown = TextOf<EditField>(*desktop.Active(), CCenterDlg::numberId); };
    Show({Tap(Dlg::centerId), note, Fill(CCenterDlg::numberId, "12\"3+"), Tap(idOk)}, 200);
    EXPECT_EQ(shown, "+8613800100500");
    EXPECT_EQ(unit.Count("AT+CSCA=\"123+\""), 1);

    UserChoices& choices = dialog->Choices();
    EXPECT_EQ(choices.SetServiceCenter("+1234567890123456"), ValueFault::TooLong);
    EXPECT_EQ(choices.SetServiceCenter("12\r3"), ValueFault::Invalid);
    EXPECT_EQ(choices.ServiceCenter(), "123+");
    Show({Tap(Dlg::centerId), Fill(CCenterDlg::numberId, ""), Tap(idOk), Answer(WarnCode::NoNumber),
          [&] { EXPECT_TRUE(Top<CCenterDlg>()); }, Tap(CCenterDlg::exitId)});
}

TEST_F(SettingsScreen, AnotherNetworkModeIsKeptAndSentWhenTheScreenIsLeft) {
    OpenModule();
    Settings(registry).WriteDword(Settings::networkModeKey, "NetworkMode", 0xFFFFFFFF);
    std::string shown;
    const auto note = [&] { shown += TextOf(*desktop.Active(), Dlg::modeTextId) + ","; };
    for (const Point item : {only2G, automatic, automatic}) {
        Show({note, Tap(Dlg::networkId), Tap(item), Tap(CDlgNetworkSet::exitId), note}, 200);
    }
    EXPECT_EQ(shown, "Automatic,2G only,2G only,Automatic,Automatic,Automatic,");
    EXPECT_EQ(unit.Count("AT+MODODR=3"), 1);
    EXPECT_EQ(unit.Count("AT+MODODR=0"), 1);
    EXPECT_EQ(dialog->Choices().NetworkMode(), 0u);
}

struct Operators : SettingsScreen {
    Operators() {
        const ISP_Struct two[] = {Operator("One", "one.net", "46000"), Operator("Two", "two.net", "46001")};
        InstallOperators(files, two);
        dialog->Data().SetISPToReg(two[0]);
    }
    // On the tab of the operators.
    void ShowList(std::vector<Step> steps) {
        CDlgNetworkSet screen(*context);
        screen.Show();
        steps.insert(steps.begin(), Tap(operatorsTab));
        Play(steps);
    }
    std::string Names() {
        std::string names;
        for (const ISP_Struct& isp : dialog->Data().Operators().Load())
            names += std::string(isp.name.View()) + " ";
        return names;
    }
    std::string InUse() { return std::string(Settings(registry).ReadIsp()->szAPN.View()); }
    Step ExpectInUse(const char* accessPoint) {
        return [this, accessPoint] { EXPECT_EQ(InUse(), accessPoint); };
    }
};

TEST_F(Operators, TheChosenOneIsUsedAndTheBuiltInOneWhenNoneIs) {
    ShowList({Tap(Row(2)), Tap(CDlgNetworkSet::useId), Answer(WarnCode::IspChanged), ExpectInUse("two.net"),
              [&] { EXPECT_FALSE(Enabled(*desktop.Active(), CDlgNetworkSet::useId)); }, Tap(Row(0)),
              Tap(CDlgNetworkSet::useId), Answer(WarnCode::IspChanged)});
    const ISP_Struct kept = *Settings(registry).ReadIsp();
    EXPECT_EQ(kept.name.View(), "CMCC");
    EXPECT_EQ(kept.szAPN.View(), "CMNET");
    EXPECT_EQ(kept.dialNumber.View(), "*99***1#");
    EXPECT_EQ(Settings(registry).ReadDword(Settings::networkModeKey, "Account"), 0u);
}

TEST_F(Operators, ANewOneComesFirstAndWhatIsTypedSurvivesAFullFlash) {
    files.freeBytes = 1000;
    const auto makeRoom = [&] {
        EXPECT_EQ(Names(), "One Two ");
        EXPECT_EQ(TextOf<EditField>(*desktop.Active(), CDlgISP::firstFieldId), "Three");
        files.freeBytes = 64 << 20;
    };
    ShowList({Tap(CDlgNetworkSet::newId), Tap(CDlgISP::saveId), Answer(WarnCode::IspEmpty),
              Fill(CDlgISP::firstFieldId, "Three"), Fill(CDlgISP::firstFieldId + 1, "three\"net"),
              Tap(CDlgISP::saveId), Answer(WarnCode::NumberInvalid),
              Fill(CDlgISP::firstFieldId + 1, "three.net"), Tap(CDlgISP::saveId), Answer(WarnCode::NandFull),
              makeRoom, Tap(CDlgISP::saveId), [&] { EXPECT_TRUE(Top<CDlgNetworkSet>()); }});
    EXPECT_EQ(Names(), "Three One Two ");
    EXPECT_EQ(InUse(), "one.net");
}

TEST_F(Operators, TheOneInUseIsUsedAsItWasChangedAndStaysWhenItIsDeleted) {
    // Left by the exit: the question whether to save comes first.
    ShowList({Tap(Row(1)), Tap(CDlgNetworkSet::editId), Fill(CDlgISP::firstFieldId + 1, "uno.net"),
              [&] { desktop.Active()->SetFocus(nullptr); }, Tap(CDlgISP::exitId),
              Answer(WarnCode::WritePrompt), Answer(WarnCode::IspChanged), ExpectInUse("uno.net"),
              Tap(CDlgNetworkSet::editId), Tap(CDlgISP::deleteId), Answer(WarnCode::DeletePrompt)});
    EXPECT_EQ(Names(), "Two ");
    EXPECT_EQ(InUse(), "uno.net");
}

TEST(IspText, IsRefusedWhereItCouldNotBeDialled) {
    const CodePage& page = CodePageNamed("GB18030");
    const std::string long127(127, 'a');
    struct Row {
        IspText text;
        int warning;
    };
    const Row rows[] = {
        {{"中国移动", "", " pass word ", " cmnet ", "*99***1#", "46000"}, 0},
        {{long127, long127, long127, "a", "", ""}, 0},
        {{" ", "", "", "cmnet", "", ""}, 24},
        {{"a", "", "", "", "", ""}, 24},
        {{long127 + "a", "", "", "cmnet", "", ""}, 27},
        {{"a", "", "", "cm\"net", "", ""}, 26},
        {{"a", "", "", std::string(101, 'a'), "", ""}, 25},
        {{"a", "", "", "cmnet", "*99;\r", ""}, 26},
        {{"a", "", "", "cmnet", "", "46O00"}, 26},
        {{"a", "", "", "cmnet", "", std::string(16, '1')}, 25},
    };
    for (const Row& row : rows) {
        ISP_Struct isp = DefaultIsp();
        const auto fault = MakeIsp(page, row.text, isp);
        EXPECT_EQ(fault ? static_cast<int>(fault->warning) : 0, row.warning) << row.text.name;
        EXPECT_TRUE(!fault || isp.szAPN == "CMNET") << "as it was";
    }
    ISP_Struct isp;
    ASSERT_FALSE(MakeIsp(page, rows[0].text, isp));
    const IspText back = IspTextOf(page, isp);
    EXPECT_EQ(back.name, "中国移动");
    EXPECT_EQ(back.password, " pass word ");
    EXPECT_EQ(back.accessPoint, "cmnet");
}

}  // namespace
}  // namespace varkel::test
