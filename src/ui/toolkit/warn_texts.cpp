#include "ui/toolkit/warn_texts.h"

#include <array>

namespace varkel {

namespace {

// By code, from 1 on.
constexpr std::array<const char*, 39> keys{
    "IDS_FAILADD",
    "IDS_DELRECORDPROMPT",
    "IDS_WRITEPROMT",
    "IDS_EXITPROMT",
    "IDS_NONUM",
    "IDS_ADDPROMPTSTR",
    "IDS_NOFINDSTR",
    "IDS_NOSM",
    "IDS_DELETEPROMPT",
    "IDS_FINDPROMPTSTR",
    "IDS_NOSIGNALSTR",
    "IDS_BUSY",
    "IDS_LINKNET",
    "IDS_LINKNETFAIL",
    "IDS_NO_SIM",
    "IDS_NET_OPEN_FAILED",
    nullptr,  // the one that is not translated
    "IDS_3GNET_CLOSED",
    "IDS_DIALUP_FAIL",
    "IDS_DEL_ALL_REC",
    "IDS_FAILED_RUN_TREKON",
    "IDS_SIM_DISCONNECT",
    "IDS_PHONEBOOK_NAME_EXIST",
    "IDS_ISP_EMPTY",
    "IDS_NUMBER_LONG",
    "IDS_NUMBER_INVALID",
    "IDS_NAME_LONG",
    "IDS_LOW_POWER",
    "IDS_NAND_FULL",
    "IDS_OPEN3G_FAIL",
    "IDS_FILE_DESTORYED",
    "IDS_SMS_CHARACTER",
    "IDS_PHONEBOOK_FULL",
    "IDS_ADD_FAIL",
    "IDS_DELETE_FAIL",
    "IDS_ISP_CHANGED",
    "IDS_CREG_FAIL",
    "IDS_NO_APN",
    "IDS_NO_SIM",
};

constexpr const char* portOpenFailed = "打开3G串口失败，机器需要重启，3G才能正常使用";

}  // namespace

std::string WarnText(WarnCode code, const Language& language) {
    const auto index = static_cast<std::size_t>(code) - 1;
    if (index >= keys.size()) return {};
    return keys[index] ? language.LoadString(keys[index]) : portOpenFailed;
}

}  // namespace varkel
