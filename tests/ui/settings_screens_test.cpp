// The settings screens on the simulated unit, through touches.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/screen_bench.h"
#include "ui/screens/center_dlg.h"
#include "ui/screens/isp_dlg.h"
#include "ui/screens/network_set_dlg.h"
#include "ui/screens/settings_dlg.h"
#include "ui/toolkit/check_box.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/list_box.h"
#include "ui/toolkit/radio_group.h"
#include "ui/toolkit/skin_button.h"
#include "ui/toolkit/static_text.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel {
namespace {

using testing::ElementsAre;

struct SettingsBench : test::ScreenBench {
    CVarkelDlg& Session() { return *dialog; }
    void Open() {
        dialog->OpenModule(false);
        ASSERT_TRUE(RunUntilOpenEnds());
        RunFor(3000);
        unit.TakeTrace();
    }

    // Runs the steps one after the other, also while a screen that one of them has opened is modal, and
    // closes what they leave open.
    void Play(const std::vector<Step>& steps) {
        constexpr TimerId stepTimer = 9003;
        std::size_t next = 0;
        loop.SetTimer(stepTimer, stepTime, [&] {
            if (m_pause > 0) {
                --m_pause;
            } else if (next < steps.size()) {
                steps[next++]();
            } else if (Dialog* const open = desktop.Active()) {
                open->EndDialog(DialogResult::Cancel);
            }
        });
        loop.Run([&] { return next == steps.size() && m_pause == 0 && !desktop.Active(); });
        loop.KillTimer(stepTimer);
    }
    // The next step waits.
    void Pause(Ticks time) { m_pause = time / stepTime; }

    void Tap(Point at) {
        display.Touch(TouchAction::Down, at);
        display.Touch(TouchAction::Up, at);
    }
    void TapMiddle(const Rect& rect) { Tap({rect.x + rect.width / 2, rect.y + rect.height / 2}); }
    // A control of the topmost dialog.
    template <class Kind = CSkinButton>
    void TapOn(int id) {
        TapMiddle(desktop.Active()->Get<Kind>(id).Place());
    }
    void TapRow(int row) {
        const Rect list = desktop.Active()->Get<ListBox>(CDlgNetworkSet::listId).Place();
        Tap({list.x + 200, list.y + row * 86 + 40});
    }
    void TapItem(int id, int item, Size size) {
        const Rect group = desktop.Active()->Get<RadioGroup>(id).Place();
        const int columns = group.width / size.width;
        Tap({group.x + item % columns * size.width + size.width / 2,
             group.y + item / columns * size.height + size.height / 2});
    }
    void TapModem(int item) { TapItem(CSettingsDlg::modemId, item, {282, 63}); }
    void TapOperators() { TapItem(CDlgNetworkSet::tabsId, 1, {200, 66}); }
    void Type(int field, const std::string& text) {
        desktop.Active()->Get<EditField>(field).SetWindowText("");
        desktop.Active()->SetFocus(&desktop.Active()->Get<EditField>(field));
        display.Key({KeyCode::None, text});
    }

  private:
    static constexpr Ticks stepTime = 20;
    Ticks m_pause = 0;  // steps
};

struct SettingsScreen : testing::Test, SettingsBench {
    // Opens the screen on a module that is open, runs the steps, and carries out what it leaves.
    void Show(std::vector<Step> steps) {
        CSettingsDlg screen(*context);
        screen.Show();
        Play(steps);
        RunFor(10);
        requests = screen.Requests();
        Session().CarryOut(requests);
    }
    Step Close() {
        return [this] { TapOn(CSettingsDlg::exitId); };
    }
    std::string StoredVolume() {
        ValueTable table = VolumeValues(registry, notices);
        EXPECT_TRUE(table.Load());
        return table.Get("GPRSVol");
    }
    void StoreVolume(const std::string& level) {
        ValueTable table = VolumeValues(registry, notices);
        EXPECT_TRUE(table.Load());
        table.Set("GPRSVol", level);
        EXPECT_TRUE(table.Save());
    }
    void ExpectRequests(const std::string& expected) {
        std::string left;
        if (requests.turnOn) left += "on ";
        if (requests.turnOff) left += "off ";
        if (requests.closeData) left += "close ";
        if (requests.openData) left += "open ";
        EXPECT_EQ(left, expected);
    }

    ChangeRequests requests;
};

TEST_F(SettingsScreen, TheVolumeStaysInItsRangeAndIsKeptAndSent) {
    struct Row {
        std::string stored;
        int button;
        std::string kept;
    };
    const Row rows[] = {{"5", CSettingsDlg::volumeUpId, "5"},   {"4", CSettingsDlg::volumeUpId, "5"},
                        {"0", CSettingsDlg::volumeDownId, "0"}, {"1", CSettingsDlg::volumeDownId, "0"},
                        {"99", CSettingsDlg::volumeUpId, "5"},  {"-7", CSettingsDlg::volumeUpId, "1"},
                        {"loud", CSettingsDlg::volumeUpId, "4"}};
    Open();
    for (const Row& row : rows) {
        StoreVolume(row.stored);
        unit.TakeTrace();
        Show({[&] { TapOn(row.button); }, Close()});
        RunFor(100);
        EXPECT_EQ(StoredVolume(), row.kept) << row.stored;
        EXPECT_EQ(unit.Count("AT+CLVL=" + row.kept), 1) << row.stored;
    }
}

TEST_F(SettingsScreen, ItSendsTheStoredVolumeWhenItOpensAndAsksForTheSignal) {
    Open();
    StoreVolume("2");
    unit.TakeTrace();
    Show({[&] { Pause(1000); }, [&] { EXPECT_EQ(unit.Count("AT+CLVL=2"), 1); },
          [&] { EXPECT_GE(unit.Count("AT+CSQ"), 1); }, Close()});
}

TEST_F(SettingsScreen, TheNetworkModeIsShownByItsKey) {
    const std::pair<std::uint32_t, const char*> rows[] = {
        {0, "Automatic"},    {1, "3G only"},   {2, "3G preferred"},       {3, "2G only"},
        {4, "2G preferred"}, {5, "Automatic"}, {0xFFFFFFFF, "Automatic"},
    };
    for (const auto& [mode, text] : rows) {
        Settings(registry).WriteDword(Settings::networkModeKey, "NetworkMode", mode);
        Show({[&, shown = text] {
                  EXPECT_EQ(desktop.Active()->Get<StaticText>(CSettingsDlg::modeTextId).GetWindowText(),
                            shown);
              },
              Close()});
    }
}

TEST_F(SettingsScreen, ClosingWithoutAChangeAsksForNothing) {
    Show({Close()});
    ExpectRequests("");
    Open();
    Show({Close()});
    ExpectRequests("");
    // To and fro is no change either; the modem's way takes the data link along.
    Show({[&] { TapModem(1); }, [&] { TapModem(0); }, [&] { TapOn<CheckBox>(CSettingsDlg::dataId); },
          Close()});
    ExpectRequests("");
    EXPECT_EQ(Settings(registry).ReadAutoOpenFlag(), 0u);
    Show({[&] { TapOn<CheckBox>(CSettingsDlg::autoOpenId); }, Close()});
    EXPECT_EQ(Settings(registry).ReadAutoOpenFlag(), 1u);
}

TEST_F(SettingsScreen, TheModemIsSwitchedOnWithTheDataLinkOrWithout) {
    for (const bool withData : {true, false}) {
        dialUp.connects = true;
        dialUp.ForgetDialled();
        Show({[&] { TapModem(0); },
              [&] { EXPECT_TRUE(desktop.Active()->Get<CheckBox>(CSettingsDlg::dataId).IsChecked()); },
              [&] {
                  if (!withData) TapOn<CheckBox>(CSettingsDlg::dataId);
              },
              Close()});
        ExpectRequests(withData ? "on open " : "on ");
        ASSERT_TRUE(RunUntilOpenEnds());
        RunFor(5000);
        EXPECT_EQ(dialUp.Dialled().size(), withData ? 1u : 0u);
        Show({[&] { TapModem(1); },
              [&] {
                  const auto& data = desktop.Active()->Get<CheckBox>(CSettingsDlg::dataId);
                  EXPECT_FALSE(data.IsChecked() || data.IsWindowEnabled());
              },
              Close()});
        ExpectRequests(withData ? "off close " : "off ");
        EXPECT_TRUE(RunUntil([&] { return !Session().State().m_bModuleOpen; }, 20'000));
        RunFor(5000);
        EXPECT_EQ(dialUp.Current(), RasHandle::None);
    }
}

TEST_F(SettingsScreen, AnUntouchedBoxFollowsTheDataLink) {
    Open();
    Show({[&] { TapOn<CheckBox>(CSettingsDlg::dataId); }, Close()});
    ExpectRequests("open ");
    RunFor(5000);
    dialUp.Report(RasState::Connected);
    RunFor(100);
    Show({[&] {
              const Dialog& screen = *desktop.Active();
              EXPECT_TRUE(screen.Get<CheckBox>(CSettingsDlg::dataId).IsChecked());
              EXPECT_EQ(screen.Get<StaticText>(CSettingsDlg::dataTextId).GetWindowText(), "Connected");
          },
          [&] { dialUp.Report(RasState::Disconnected); }, [&] { Pause(4000); }, Close()});
    ExpectRequests("");
}

TEST_F(SettingsScreen, ACallTakesWhatWasChosenAndTheOtherScreens) {
    Open();
    Show({[&] { TapModem(1); }, [&] { unit.Command("call 13800138000"); }, [&] { Pause(500); },
          [&] { desktop.OnSessionChanged(); },
          [&] {
              const Dialog& screen = *desktop.Active();
              EXPECT_FALSE(screen.Get<RadioGroup>(CSettingsDlg::modemId).IsWindowVisible());
              EXPECT_FALSE(screen.Get<CheckBox>(CSettingsDlg::dataId).IsWindowVisible());
              EXPECT_EQ(screen.Get<CheckBox>(CSettingsDlg::autoOpenId).Place().y,
                        screen.Get<RadioGroup>(CSettingsDlg::modemId).Place().y)
                  << "without a gap";
              EXPECT_FALSE(screen.Get<CSkinButton>(CSettingsDlg::centerId).IsWindowEnabled());
              EXPECT_FALSE(screen.Get<CSkinButton>(CSettingsDlg::networkId).IsWindowEnabled());
          },
          [&] { TapModem(1); }, Close()});
    ExpectRequests("");
    EXPECT_TRUE(Session().Calls().Busy());
}

TEST_F(SettingsScreen, ARingIsHeardWhenItIsChosenAndPlayedFromThenOn) {
    Open();
    sound.Forget();
    Show({[&] { TapOn(CSettingsDlg::callRingId); }, [&] { TapOn(CSettingsDlg::noteRingId); },
          [&] { TapOn(CSettingsDlg::noteRingId); }, [&] { TapOn(CSettingsDlg::noteRingId); }, Close()});
    EXPECT_THAT(sound.Played(),
                ElementsAre("\\ResidentFlash2\\bin\\ring2.wav", "\\ResidentFlash2\\bin\\msg2.wav",
                            "\\ResidentFlash2\\bin\\msg3.wav", "", ""));
    sound.Forget();
    unit.Command("call 13800138000");
    RunFor(500);
    EXPECT_THAT(sound.Played(), ElementsAre("\\ResidentFlash2\\bin\\ring2.wav"));
}

TEST_F(SettingsScreen, AServiceCentreThatCannotBeUsedStaysInItsField) {
    Open();
    Show({[&] { TapOn(CSettingsDlg::centerId); },
          [&] {
              EXPECT_EQ(desktop.Active()->Get<EditField>(CCenterDlg::numberId).GetWindowText(),
                        "+8613800100500");
          },
          [&] { Type(CCenterDlg::numberId, "12\"3+"); }, [&] { TapOn(idOk); }, [&] { Pause(200); }, Close()});
    EXPECT_EQ(unit.Count("AT+CSCA=\"123+\""), 1);
    EXPECT_EQ(Session().Choices().ServiceCenter(), "123+");

    UserChoices& choices = Session().Choices();
    EXPECT_EQ(choices.SetServiceCenter("+1234567890123456"), ValueFault::TooLong);
    EXPECT_EQ(choices.SetServiceCenter("12\r3"), ValueFault::Invalid);
    EXPECT_EQ(choices.ServiceCenter(), "123+");
    Show({[&] { TapOn(CSettingsDlg::centerId); }, [&] { Type(CCenterDlg::numberId, ""); },
          [&] { TapOn(idOk); },
          [&] {
              ASSERT_TRUE(Top<CWarnDlg>());
              EXPECT_EQ(Top<CWarnDlg>()->Code(), WarnCode::NoNumber);
              TapOn(idOk);
          },
          [&] { EXPECT_TRUE(Top<CCenterDlg>()); }});
}

TEST_F(SettingsScreen, AnotherNetworkModeIsKeptAndSentWhenTheScreenIsLeft) {
    Open();
    for (const int item : {2, 4, 4}) {
        Show({[&] { TapOn(CSettingsDlg::networkId); },
              [&] {
                  TapItem(CDlgNetworkSet::modesId, item, {516, 67});
              },
              [&] { TapOn(CDlgNetworkSet::exitId); }, [&] { Pause(200); }, Close()});
    }
    EXPECT_EQ(unit.Count("AT+MODODR=3"), 1);
    EXPECT_EQ(unit.Count("AT+MODODR=0"), 1);
    EXPECT_EQ(Session().Choices().NetworkMode(), 0u);
}

struct Operators : SettingsScreen {
    Operators() {
        const ISP_Struct two[] = {test::Operator("One", "one.net", "46000"),
                                  test::Operator("Two", "two.net", "46001")};
        test::InstallOperators(files, two);
        Session().Data().SetISPToReg(two[0]);
    }
    // On the tab of the operators.
    void ShowList(std::vector<Step> steps) {
        CDlgNetworkSet screen(*context);
        screen.Show();
        steps.insert(steps.begin(), [this] { TapOperators(); });
        Play(steps);
    }
    std::string Names() {
        std::string names;
        for (const ISP_Struct& isp : Session().Data().Operators().Load())
            names += std::string(isp.name.View()) + " ";
        return names;
    }
    std::string InUse() { return std::string(Settings(registry).ReadIsp()->szAPN.View()); }
    void ExpectWarning(WarnCode code) {
        ASSERT_TRUE(Top<CWarnDlg>());
        EXPECT_EQ(Top<CWarnDlg>()->Code(), code);
        TapOn(idOk);
    }
};

TEST_F(Operators, TheChosenOneIsUsedAndTheBuiltInOneWhenNoneIs) {
    ShowList(
        {[&] { TapRow(2); }, [&] { TapOn(CDlgNetworkSet::useId); },
         [&] { ExpectWarning(WarnCode::IspChanged); }, [&] { EXPECT_EQ(InUse(), "two.net"); },
         [&] { EXPECT_FALSE(desktop.Active()->Get<CSkinButton>(CDlgNetworkSet::useId).IsWindowEnabled()); },
         [&] { TapRow(0); }, [&] { TapOn(CDlgNetworkSet::useId); }});
    const ISP_Struct kept = *Settings(registry).ReadIsp();
    EXPECT_EQ(kept.name.View(), "CMCC");
    EXPECT_EQ(kept.szAPN.View(), "CMNET");
    EXPECT_EQ(kept.dialNumber.View(), "*99***1#");
    EXPECT_EQ(Settings(registry).ReadDword(Settings::networkModeKey, "Account"), 0u);
}

TEST_F(Operators, ANewOneComesFirstAndWhatIsTypedSurvivesAFullFlash) {
    files.freeBytes = 1000;
    ShowList({[&] { TapOn(CDlgNetworkSet::newId); }, [&] { TapOn(CDlgISP::saveId); },
              [&] { ExpectWarning(WarnCode::IspEmpty); }, [&] { Type(CDlgISP::firstFieldId, "Three"); },
              [&] { Type(CDlgISP::firstFieldId + 1, "three\"net"); }, [&] { TapOn(CDlgISP::saveId); },
              [&] { ExpectWarning(WarnCode::NumberInvalid); },
              [&] { Type(CDlgISP::firstFieldId + 1, "three.net"); }, [&] { TapOn(CDlgISP::saveId); },
              [&] { ExpectWarning(WarnCode::NandFull); },
              [&] {
                  EXPECT_EQ(Names(), "One Two ");
                  EXPECT_EQ(desktop.Active()->Get<EditField>(CDlgISP::firstFieldId).GetWindowText(), "Three");
                  files.freeBytes = 64 << 20;
              },
              [&] { TapOn(CDlgISP::saveId); }, [&] { EXPECT_TRUE(Top<CDlgNetworkSet>()); }});
    EXPECT_EQ(Names(), "Three One Two ");
    EXPECT_EQ(InUse(), "one.net");
}

TEST_F(Operators, TheOneInUseIsUsedAsItWasChangedAndStaysWhenItIsDeleted) {
    ShowList({[&] { TapRow(1); }, [&] { TapOn(CDlgNetworkSet::editId); },
              [&] { Type(CDlgISP::firstFieldId + 1, "uno.net"); },
              // Left by the exit: the question whether to save comes first.
              [&] { desktop.Active()->SetFocus(nullptr); }, [&] { TapOn(CDlgISP::exitId); },
              [&] { ExpectWarning(WarnCode::WritePrompt); }, [&] { ExpectWarning(WarnCode::IspChanged); },
              [&] { EXPECT_EQ(InUse(), "uno.net"); }, [&] { TapOn(CDlgNetworkSet::editId); },
              [&] { TapOn(CDlgISP::deleteId); }, [&] { ExpectWarning(WarnCode::DeletePrompt); }});
    EXPECT_EQ(Names(), "Two ");
    EXPECT_EQ(InUse(), "uno.net");
}

TEST(IspText, IsRefusedWhereItCouldNotBeDialled) {
    const CodePage& page = test::CodePageNamed("GB18030");
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
}  // namespace varkel
