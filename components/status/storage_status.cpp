#include "components/status/status_component.h"
#include "framework/log.h"
#include "platform/sysint.h"

void StatusComponent::GetSmbStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetSmbStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    std::string cardStatus;
    sys_sd_card_info_t card{};
    const int cardResult = sys_getSDCardInfo(&card);
    int sharingEnabled = 0;
    const int sharingResult = sys_getSambaEnabled(&sharingEnabled);
    if (cardResult == SYS_ERROR_NO_SD_CARD && sharingResult == SYS_SUCCESS) {
        cardStatus = "SdNotMounted";
    } else if (cardResult == SYS_SUCCESS && sharingResult == SYS_SUCCESS) {
        cardStatus = sharingEnabled != 0 ? "SmbOn" : "SmbOff";
        statusData["statusBarSdCardUsedSpace"] =
            std::to_string(card.totalCapacity - card.freeSpace);
        statusData["statusBarSdCardFreeSpace"] = std::to_string(card.freeSpace);
    } else {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getSDCardInfo/ sys_getSambaEnabled failed, returned error codes [%d]/ [%d]. Try "
            "sysintcli getSDCardInfo/ sysintcli getSambaEnabled from command line.",
            cardResult, sharingResult);
    }
    statusData["statusBarSdCardStatus"] = cardStatus;

    sys_samba_share_info_t share{};
    const int shareResult = sys_getSambaShareInfo(&share);
    if (shareResult == SYS_SUCCESS) {
        KESTAL_DEBUG("statusBarSdCardInUse is:[%d].", static_cast<int>(share.cardInUse));
        statusData["statusBarSdCardInUse"] = share.cardInUse;
    } else {
        KESTAL_FAILURE(
            "sys_getSambaShareInfo failed with error code: %d, try sysintcli getSambaShareInfo "
            "from command line",
            shareResult);
    }
    KESTAL_END();
}
