#include "stores/isp_record.h"

namespace varkel {

ISP_Struct DefaultIsp() {
    ISP_Struct isp{};
    isp.name.Assign("CMCC");
    isp.szAPN.Assign("CMNET");
    isp.dialNumber.Assign("*99***1#");
    return isp;
}

bool Serves(const ISP_Struct& isp, std::string_view imsi) {
    return imsi.starts_with(isp.operatorCode.View());
}

}  // namespace varkel
