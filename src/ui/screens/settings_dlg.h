// The settings screen: volume, rings, service centre, network, modem and data link. Dialog thread.
#pragma once

#include "session/user_choices.h"
#include "ui/screens/screen_context.h"
#include "ui/toolkit/dialog.h"

namespace varkel {

// Volume and rings hold at once; modem and data link are switched when the screen has closed. What the user
// has not touched follows what the modem does meanwhile.
class CSettingsDlg final : public Dialog {
  public:
    explicit CSettingsDlg(ScreenContext& context);

    // What is to be done, once the screen has been closed.
    const ChangeRequests& Requests() const { return m_requests; }
    void OnSessionChanged() override;

    static constexpr int volumeUpId = 1037;
    static constexpr int volumeDownId = 1036;
    static constexpr int callRingId = 1027;
    static constexpr int noteRingId = 1028;
    static constexpr int centerId = 1071;
    static constexpr int networkId = 1072;
    static constexpr int exitId = 1075;
    static constexpr int modemId = 1100;
    static constexpr int dataId = 1101;
    static constexpr int autoOpenId = 1102;
    static constexpr int modeTextId = 1103;
    static constexpr int dataTextId = 1104;

  private:
    void OnInitDialog() override;
    void OnDestroy() override;
    void OnPaint(Canvas& canvas) override;

    bool ModemOn() const;
    void SetVolume(int level);
    void NextRing(RingKind kind);
    void ShowRing(RingKind kind);
    void ChooseModem();
    void Refresh();
    void AskSignal();
    void Close();

    ScreenContext& m_context;
    ChangeRequests m_requests;
    int m_volume = 0;
    bool m_modemChosen = false;  // by the user, as the next one
    bool m_dataChosen = false;
    bool m_ringHeard = false;
};

// Opens the screen, and has done what it leaves when it closes.
void ShowSettings(ScreenContext& context);

}  // namespace varkel
