#include "stores/isp_list.h"

#include <algorithm>

namespace varkel {

IspList::IspList(UnitFiles& files, Log& log)
    : m_file(files, log,
             {.path = "NandFlash\\System\\Phone\\ISPDest.dat",
              .factoryPath = "Residentflash2\\bin\\Gprs\\ISPDest.dat"}) {}

std::optional<ISP_Struct> IspList::Find(std::string_view imsi) {
    const List list = Load();
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const ISP_Struct& isp) { return Serves(isp, imsi); });
    if (found == list.end()) return std::nullopt;
    return *found;
}

StoreResult IspList::Add(const ISP_Struct& isp) {
    return m_file.Update(SpaceGuard::On, [&](List& list) {
        list.insert(list.begin(), isp);
        return StoreResult::Done;
    });
}

}  // namespace varkel
