#include "ui/phone_screens.h"

#include "ui/dial_pad.h"

namespace varkel {

ScreenHooks PhoneScreens(ScreenContext& context) {
    ScreenHooks hooks;
    hooks.navigation.dialPad = [&context] { CDialPad(context).DoModal(); };
    hooks.unreadMessages = [&context] {
        return static_cast<int>(context.session.Messages().Boxes().inbox.UnreadCount());
    };
    return hooks;
}

}  // namespace varkel
