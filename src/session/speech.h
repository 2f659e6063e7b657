// Speaks the captions of the main screen's buttons.
#pragma once

#include "session/session.h"

namespace varkel {

// Dialog thread.
class Speech {
  public:
    explicit Speech(Session& session) : m_session(session) {}

    // Start-up: prepares the engine when there are voice packages. `window` speaks.
    void Start(WindowHandle window);
    // Speaks the caption of a button that was pressed. Nothing is spoken during a call, while speech is
    // switched off, or when the packages lie on the SD card; and nothing of that is reported.
    void Announce(std::string_view caption);
    // Reads "g_bTTSOpen" again: other programs switch speech on and off.
    void ReadSwitch();
    void ShutDown();

  private:
    enum class PackageSource { Flash = 0, SdCard = 1 };

    // Looks for the packages, in the flash first; false when there is no pair of them.
    bool CheckPackages();
    void InitEngine();
    // What an announcement does when the start has left no engine.
    void MakeReady();
    void BecomeReady();

    Session& m_session;
    WindowHandle m_window = WindowHandle::None;
    PackageSource m_nTtsPackageSource = PackageSource::Flash;
    bool m_bTtsReady = false;  // jceInit has succeeded
};

}  // namespace varkel
