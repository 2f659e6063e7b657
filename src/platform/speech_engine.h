// The unit's text-to-speech library.
#pragma once

#include <string_view>

#include "platform/window_messages.h"

namespace varkel {

// Nothing waits until something has been spoken. One thread at a time.
class SpeechEngine {
  public:
    virtual ~SpeechEngine() = default;

    // Takes the device paths of the two voice packages; 0 when the engine can speak.
    virtual int jceInit(std::string_view chinesePackage, std::string_view englishPackage) = 0;
    // What the parameters 1, 2 and 3 mean is the engine's matter.
    virtual void jceSetParam(int parameter, int value) = 0;
    // Speaks a text of the display code page in place of what it speaks now. That there is nothing to speak
    // with is silence.
    virtual void jcePlay(std::string_view narrow, WindowHandle window) = 0;
    virtual void jceStop() = 0;
    virtual void jceEnd() = 0;
};

}  // namespace varkel
