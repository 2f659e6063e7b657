#include "ui/phone_screens.h"

#include <memory>
#include <string>

#include "ui/screens/call_records_dlg.h"
#include "ui/screens/dial_pad.h"
#include "ui/screens/message_boxes_dlg.h"
#include "ui/screens/new_messages_dlg.h"
#include "ui/screens/phone_book_dlg.h"
#include "ui/screens/settings_dlg.h"
#include "ui/screens/write_message_dlg.h"

namespace varkel {

ScreenHooks PhoneScreens(ScreenContext& context) {
    context.pickNumber = [&context] { return CPhoneBookDlg::PickNumber(context); };
    ScreenHooks hooks;
    hooks.navigation.dialPad = [&context] { CDialPad(context).DoModal(); };
    hooks.navigation.messages = [&context] { CMessageBoxesDlg(context).DoModal(); };
    hooks.navigation.settings = [&context] { ShowSettings(context); };
    hooks.navigation.callRecords = [&context] { CCallRecordsDlg(context).DoModal(); };
    hooks.navigation.phoneBook = [&context] {
        const auto write = [&context](const std::string& number) {
            CWriteMessageDlg(context, number, "").DoModal();
        };
        CPhoneBookDlg(context, PhoneBookMode::Use, write).DoModal();
    };
    hooks.hideWriteMessage = [&context] { HideWriteMessage(context.desktop); };
    hooks.showNewMessages = [messages = std::make_shared<CNewMessagesDlg>(context)] { messages->Show(); };
    hooks.unreadMessages = [&context] {
        return static_cast<int>(context.session.Messages().Boxes().inbox.UnreadCount());
    };
    hooks.newMissedCalls = [&context] { return context.session.Calls().NewMissed(); };
    return hooks;
}

}  // namespace varkel
