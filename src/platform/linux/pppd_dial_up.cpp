#include "platform/linux/pppd_dial_up.h"

namespace varkel {

RasError PppdDialUp::RasDial(const RasDialParams&, std::function<void(RasState)>, RasHandle& handle) {
    handle = RasHandle::None;
    return RasError::CannotDial;
}

void PppdDialUp::RasHangUp(RasHandle) {}

}  // namespace varkel
