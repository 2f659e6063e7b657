// The operators' list of a unit under test.
#pragma once

#include <span>
#include <string>

#include "platform/unit_files.h"
#include "stores/isp_record.h"

namespace varkel::test {

inline ISP_Struct Operator(const char* name, const char* accessPoint, const char* code) {
    ISP_Struct isp{};
    isp.name.Assign(name);
    isp.szAPN.Assign(accessPoint);
    isp.operatorCode.Assign(code);
    return isp;
}

inline void InstallOperators(UnitFiles& files, std::span<const ISP_Struct> operators) {
    files.CreateDirectory("NandFlash\\System");
    files.CreateDirectory("NandFlash\\System\\Phone");
    const auto* const bytes = reinterpret_cast<const char*>(operators.data());
    files.WriteWhole("NandFlash\\System\\Phone\\ISPDest.dat", {bytes, operators.size_bytes()});
}

// The one of the simulated unit's own SIM.
inline void InstallOperators(UnitFiles& files) {
    const ISP_Struct home = Operator("CMCC", "CMNET", "46000");
    InstallOperators(files, std::span(&home, 1));
}

}  // namespace varkel::test
