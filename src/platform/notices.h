// Plain message boxes with a fixed text.
#pragma once

#include <string_view>

#include "platform/runtime.h"

namespace varkel {

class Notices {
  public:
    virtual ~Notices() = default;

    // Shows a box and returns at once; on the read thread this is the only way. A box whose text is on the
    // screen already is not shown again. Any thread.
    virtual void ShowMessageBox(std::string_view text, std::string_view caption) = 0;
    // Shows a box and waits until it is dismissed or `closed`, if given, is signalled. Any thread but the
    // read thread.
    virtual void MessageBox(std::string_view text, std::string_view caption, Event* closed) = 0;
};

}  // namespace varkel
