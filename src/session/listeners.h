// The windows of other programs that are told whether the data link works.
#pragma once

#include <cstddef>
#include <list>
#include <map>

#include "platform/guarded.h"
#include "platform/window_messages.h"
#include "session/link_result.h"

namespace varkel {

// In the order in which they asked, none twice. A window that has gone stays until somebody removes it: its
// handle is never given again, so that what is posted to it reaches nobody. Any thread.
class Listeners {
  public:
    explicit Listeners(WindowMessages& windows) : m_windows(windows) {}

    // True when the window is in the list afterwards: it is no window of one program, or the list is full,
    // otherwise.
    bool Add(WindowHandle window);
    void Remove(WindowHandle window);
    std::size_t Size() const;

    // Posts the notification, to one window or to each in the list's order; nobody waits for anything.
    void Tell(WindowHandle window, LinkResult result);
    void TellAll(LinkResult result);

    static constexpr std::size_t limit = 65'536;
    static constexpr MessageId notification = WM_USER + 542;  // wParam: LinkStatus, lParam: LinkReason

  private:
    struct List {
        std::list<WindowHandle> windows;
        // A tree: nobody can choose handles that make it slow.
        std::map<WindowHandle, std::list<WindowHandle>::iterator> places;
    };

    WindowMessages& m_windows;
    mutable Guarded<List> m_list;
};

}  // namespace varkel
