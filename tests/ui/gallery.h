// Every screen of the telephone as its user meets it, on a display that nobody sees, above an open module.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/code_request.h"
#include "tests/support/screen_bench.h"
#include "ui/screens/call_in_dlg.h"
#include "ui/screens/call_records_dlg.h"
#include "ui/screens/cancel_button.h"
#include "ui/screens/center_dlg.h"
#include "ui/screens/contact_dlg.h"
#include "ui/screens/dial_pad.h"
#include "ui/screens/edit_contact_dlg.h"
#include "ui/screens/isp_dlg.h"
#include "ui/screens/main_screen.h"
#include "ui/screens/message_boxes_dlg.h"
#include "ui/screens/network_set_dlg.h"
#include "ui/screens/number_dlg.h"
#include "ui/screens/phone_book_dlg.h"
#include "ui/screens/phone_book_set.h"
#include "ui/screens/phrase_dlg.h"
#include "ui/screens/read_message_dlg.h"
#include "ui/screens/settings_dlg.h"
#include "ui/screens/ussd_dlg.h"
#include "ui/screens/write_message_dlg.h"
#include "ui/toolkit/edit_field.h"
#include "ui/toolkit/prompt_dlg.h"
#include "ui/toolkit/warn_dlg.h"

namespace varkel::test {

struct Gallery : ScreenBench {
    Gallery(const std::string& skin, const std::string& languageName) : ScreenBench(skin, languageName) {
        dialog->OpenModule();
        RunUntilOpenEnds();
        ann.name = "Ann Li";
        ann.numbers = {"13800138000", "01065550100", "", ""};
        dialog->Phones().Add(PhoneBookKind::Local, ann, [](PhoneBookResult) {});
        dialog->Phones().Add(PhoneBookKind::Local, {"Юрий 王", {"+8613912345678", "", "", ""}},
                             [](PhoneBookResult) {});
        MessageBox& inbox = dialog->Messages().Boxes().inbox;
        (void)inbox.WriteSmsRecord(message);
        (void)inbox.WriteSmsRecord(MakeSmsRecord(SmsTime("2009-03-08 07:30"), "10010",
                                                 NarrowFromUtf8(codePage, "Счёт: 12.50. 余额"),
                                                 SmsState::Unread));
        for (const char* number : {"13800138000", "10010"})
            (void)dialog->Calls().Lists().missed.WriteCallRecord(
                MakeCallRecord({2009, 3, 7, 18, 5, 0}, number, number));
        RunFor(3000);
    }

    template <class Screen, class... Arguments>
    std::unique_ptr<Screen> Open(Arguments&&... arguments) {
        auto screen = std::make_unique<Screen>(std::forward<Arguments>(arguments)...);
        screen->Show();
        RunFor(10);
        return screen;
    }
    std::unique_ptr<MainScreen> OpenMain(ScreenMode mode) {
        dialog->State().MainScreenMode = mode;
        auto screen = Open<MainScreen>(*context, Navigation{});
        screen->Bar().SetSignalLevel(4);
        screen->SetNews(1, 2);
        screen->Update();
        return screen;
    }
    void Touch(Point at) {
        display.Tap(at);
        RunFor(10);
    }

    std::unique_ptr<MainScreen> below;  // the screen
    PhoneText ann;
    const SmsRecord message =
        MakeSmsRecord(SmsTime("2009-03-07 18:05"), "13800138000", "Where are you?", SmsState::Opened);
};

using Screen = std::unique_ptr<Dialog>;

struct Exhibit {
    const char* name;
    std::function<Screen(Gallery&)> open;
};

inline Screen TypedNumber(Gallery& g) {
    auto screen = g.Open<CDialPad>(*g.context);
    for (const char key : std::string("13800138000"))
        g.display.Key({KeyCode::None, std::string(1, key)});
    return screen;
}

inline void Ring(Gallery& g) {
    g.unit.Command("call 13800138000");
    g.RunUntil([&g] { return !g.dialog->Calls().CallerNumber().empty(); }, 5000);
}

inline Screen IncomingCall(Gallery& g) {
    Ring(g);
    auto screen = g.Open<CCallInDlg>(*g.context);
    screen->SetCallerText(g.ann.name + " " + g.language.LoadString("IDS_RING"));
    g.RunFor(2000);
    return screen;
}

inline Screen InCall(Gallery& g) {
    Ring(g);
    g.dialog->Calls().Answer();
    g.RunUntil([&g] { return g.dialog->State().MainScreenMode == ScreenMode::InCall; }, 5000);
    auto screen = g.OpenMain(ScreenMode::InCall);
    g.RunFor(4500);
    return screen;
}

// The button that gives the start up, above the main screen.
inline Screen Starting(Gallery& g) {
    g.dialog->CloseModule();
    g.RunFor(20'000);
    g.dialog->OpenModule();
    g.RunFor(3000);
    g.below = g.OpenMain(ScreenMode::Closed);
    g.below->SetNews(0, 0);
    g.below->Bar().SetStatusText(g.language.LoadString("IDS_INITING"));
    g.below->Bar().ShowOpenStep(OpenStep::SearchNetwork, 80'000);
    g.below->Update();
    auto screen = std::make_unique<CancelButton>(g.desktop, nullptr);
    screen->SetOffer(CancelOffer::ModuleStart);
    return screen;
}

inline Screen ServiceAnswer(Gallery& g) {
    auto screen = g.Open<CUssdDlg>(*g.context);
    screen->SetText("1 Balance\n2 Tariff\n3 Messages", true);
    return screen;
}

inline Screen WriteMessage(Gallery& g) {
    auto screen = g.Open<CWriteMessageDlg>(*g.context, "13800138000", "On my way");
    const Rect field = screen->Get<EditField>(1021).Place();
    g.Touch({field.x + 20, field.y + 20});
    return screen;
}

inline Screen Contact(Gallery& g) {
    return g.Open<CContactDlg>(*g.context, g.dialog->Phones().Find(PhoneBooks::Local, "Ann").at(0),
                               PhoneBookMode::Use, [](auto&&...) {});
}

inline Screen Operators(Gallery& g) {
    auto screen = g.Open<CDlgNetworkSet>(*g.context);
    g.Touch({300, 90});
    return screen;
}

inline Screen Tip(Gallery& g) {
    auto screen = std::make_unique<CPromptDlg>(g.desktop);
    screen->ShowTip(g.language.LoadString("IDS_SENDINGNOTE"));
    return screen;
}

// A screen that needs only its context and these.
template <class Kind, class... Arguments>
Exhibit Plain(const char* name, Arguments... arguments) {
    return {name, [=](Gallery& g) { return g.Open<Kind>(*g.context, arguments...); }};
}
inline const Exhibit exhibits[] = {
    {"main-idle", [](Gallery& g) { return g.OpenMain(ScreenMode::Idle); }},
    {"dial-pad", TypedNumber},
    Plain<CNumberDlg>("code", AskFor("pin:", "")),
    Plain<CNumberDlg>("two-codes", AskFor("puk:", "pin:")),
    Plain<CNumberDlg>("service-reply", AskFor("", ""), NumberMode::UssdReply, "1 Balance\n2 Tariff"),
    {"service-answer", ServiceAnswer},
    Plain<CMessageBoxesDlg>("messages"),
    {"message", [](Gallery& g) { return g.Open<CReadMessageDlg>(*g.context, SmsBox::Inbox, g.message); }},
    {"write-message", WriteMessage},
    {"phrases", [](Gallery& g) { return g.Open<CPhraseDlg>(g.desktop); }},
    Plain<CPhoneBookDlg>("phonebook", PhoneBookMode::Use),
    Plain<CPhoneBookSet>("phonebook-settings"),
    {"contact", Contact},
    {"new-contact", [](Gallery& g) { return g.Open<CEditContactDlg>(*g.context, g.ann); }},
    Plain<CCallRecordsDlg>("call-records"),
    Plain<CSettingsDlg>("settings"),
    Plain<CCenterDlg>("service-centre"),
    Plain<CDlgNetworkSet>("network"),
    {"operators", Operators},
    Plain<CDlgISP>("operator"),
    {"warning",
     [](Gallery& g) {
         return g.Open<CWarnDlg>(g.desktop, WarnCode::DeletePrompt, WarnButtonMode::OkCancel);
     }},
    {"tip", Tip},
    {"incoming-call", IncomingCall},
    {"main-in-call", InCall},
    {"main-starting", Starting},
};

}  // namespace varkel::test
