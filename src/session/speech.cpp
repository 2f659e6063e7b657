#include "session/speech.h"

#include <string>

#include "platform/text.h"

namespace varkel {

namespace {

struct PackagePair {
    std::string_view chinese;
    std::string_view english;
};

// In the order of PackageSource.
constexpr PackagePair packages[] = {
    {"\\ResidentFlash2\\bin\\Library\\CNPackage.dat", "\\ResidentFlash2\\bin\\Library\\ENPackage.dat"},
    {"\\SDMMC\\Library\\CNPackage.dat", "\\SDMMC\\Library\\ENPackage.dat"},
};

// The engine reads the first character of "redial" in its other sense; one that sounds right stands for it.
std::string_view Spoken(std::string_view caption) {
    return caption == "重拨" || caption == "重撥" ? "虫播" : caption;
}

}  // namespace

void Speech::Start(WindowHandle window) {
    m_window = window;
    if (CheckPackages()) InitEngine();
}

void Speech::Announce(std::string_view caption) {
    if (m_session.state.MainScreenMode == ScreenMode::InCall) return;
    if (caption == m_session.platform.language.LoadString("IDS_REDIALMODE")) {
        m_session.state.m_bAudioDelay = true;
        caption = Spoken(caption);
    }
    ReadSwitch();
    if (!m_session.state.g_bTTSOpen) return;
    if (!m_bTtsReady) MakeReady();
    // Kept as the unit knows it: packages on the SD card are prepared and not spoken with.
    if (!m_bTtsReady || m_nTtsPackageSource != PackageSource::Flash) return;
    const std::size_t limit = 2 * Utf16FromUtf8(caption).size();
    m_session.platform.speech.jcePlay(NarrowFromUtf8(m_session.platform.codePage, caption, limit), m_window);
}

void Speech::ReadSwitch() {
    m_session.state.g_bTTSOpen = m_session.settings.ReadConfig("g_bTTSOpen") != 0;
}

void Speech::ShutDown() {
    m_session.platform.speech.jceStop();
    m_session.platform.speech.jceEnd();
    m_bTtsReady = false;
}

bool Speech::CheckPackages() {
    for (const PackageSource source : {PackageSource::Flash, PackageSource::SdCard}) {
        const PackagePair& pair = packages[static_cast<std::size_t>(source)];
        UnitFiles& files = m_session.platform.files;
        if (!files.Exists(pair.chinese) || !files.Exists(pair.english)) continue;
        m_nTtsPackageSource = source;
        return true;
    }
    return false;
}

void Speech::InitEngine() {
    const PackagePair& pair = packages[static_cast<std::size_t>(m_nTtsPackageSource)];
    if (m_session.platform.speech.jceInit(pair.chinese, pair.english) == 0) BecomeReady();
}

void Speech::MakeReady() {
    if (!CheckPackages()) return;
    if (m_nTtsPackageSource == PackageSource::Flash) return InitEngine();
    m_session.platform.speech.jceEnd();
    int card = 0;
    if (m_session.platform.driver.GetSDCardStatus(card) && card != 0) return InitEngine();
    // Without the card the engine counts as ready all the same.
    BecomeReady();
}

void Speech::BecomeReady() {
    constexpr int value = 500;
    m_bTtsReady = true;
    for (const int parameter : {3, 2, 1})
        m_session.platform.speech.jceSetParam(parameter, value);
}

}  // namespace varkel
