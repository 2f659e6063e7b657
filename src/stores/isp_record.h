// An operator's access to packet data.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "platform/fixed_text.h"

namespace varkel {

// Texts are bytes in the unit's text code page.
struct ISP_Struct {
    FixedText<128> name;
    FixedText<128> userName;
    FixedText<128> password;
    FixedText<128> szAPN;
    FixedText<128> dialNumber;
    FixedText<128> operatorCode;  // the leading digits of the IMSIs that it serves; empty = of all
};
static_assert(std::is_trivially_copyable_v<ISP_Struct>);
static_assert(sizeof(ISP_Struct) == 768);
static_assert(offsetof(ISP_Struct, userName) == 128);
static_assert(offsetof(ISP_Struct, password) == 256);
static_assert(offsetof(ISP_Struct, szAPN) == 384);
static_assert(offsetof(ISP_Struct, dialNumber) == 512);
static_assert(offsetof(ISP_Struct, operatorCode) == 640);

// What holds when the user has chosen no operator.
ISP_Struct DefaultIsp();

// The operator code is a prefix of the IMSI.
bool Serves(const ISP_Struct& isp, std::string_view imsi);

}  // namespace varkel
