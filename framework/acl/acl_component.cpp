#include "framework/acl/acl_component.h"

#include <utility>

#include "framework/log.h"
#include "platform/sysint.h"

void AclComponent::LoadOneAclSetting(const std::string& field, const std::string& keyBase) {
    KESTAL_SIGNATURE("void AclComponent::LoadOneAclSetting(const string&, const string&)");
    KESTAL_BEGIN();
    int show = 1;
    int lock = 0;
    const int showResult = sys_getUIFieldShowEnabled(field.c_str(), &show);
    if (showResult == SYS_SUCCESS) {
        KESTAL_DEBUG("Acl show status for [%s] is [%d]", field.c_str(), show);
    } else {
        KESTAL_FAILURE(
            "sys_getUIFieldShowEnabled failed, returned error code %d. Try sysintcli "
            "getUIFieldShowEnabled from command line.",
            showResult);
    }
    const int lockResult = sys_getUIFieldLockEnabled(field.c_str(), &lock);
    if (lockResult == SYS_SUCCESS) {
        // The line contains the show value in place of the lock value. It stays so, because those
        // who read these logs know it so.
        KESTAL_DEBUG("Acl locked status for [%s] is [%d]", field.c_str(), show);
    } else {
        KESTAL_FAILURE(
            "sys_getUIFieldLockEnabled failed, returned error code %d. Try sysintcli "
            "getUIFieldLockEnabled from command line.",
            lockResult);
    }
    settings[keyBase + "Show"] = show != 0;
    settings[keyBase + "Locked"] = lock != 0;
    settings[keyBase + "HideOrLocked"] = show == 0 || lock != 0;
    KESTAL_END();
}

void AclComponent::PopulateAclSettings(CTPP::CDT& node) {
    KESTAL_SIGNATURE("void AclComponent::PopulateAclSettings(CTPP::CDT&)");
    KESTAL_BEGIN();
    for (const auto& [key, value] : settings) {
        node[key] = value ? 1 : 0;
    }
    KESTAL_END();
}

bool AclComponent::GetFieldStatus(const std::string& key) {
    KESTAL_SIGNATURE("bool AclComponent::GetFieldStatus(const string&)");
    KESTAL_BEGIN();
    return settings[key];
}

void AclComponent::GetAppLevelAclSetting(char* app, int* hidden, int* locked) {
    KESTAL_SIGNATURE("void AclComponent::GetAppLevelAclSetting(char*, int*, int*)");
    KESTAL_BEGIN();
    // A caller may pass null for a result that it does not want.
    int unwantedHidden = 0;
    int unwantedLocked = 0;
    hidden = hidden != nullptr ? hidden : &unwantedHidden;
    locked = locked != nullptr ? locked : &unwantedLocked;
    *hidden = 0;
    *locked = 0;
    int wdcpEnabled = 1;
    const int wdcpResult = sys_getWDCPCarrierEnabled(&wdcpEnabled);
    if (wdcpResult != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getWDCPCarrierEnabled failed, returned error code %d. Try sysintcli "
            "getWDCPCarrierEnabled from command line.",
            wdcpResult);
    }
    int halyardEnabled = 1;
    const int halyardResult = sys_getHalyardAgentCarrierEnabled(&halyardEnabled);
    if (halyardResult != SYS_SUCCESS) {
        KESTAL_FAILURE_UNSEPARATED(
            " sys_getHalyardAgentCarrierEnabled failed, returned error code %d. Try sysintcli "
            "getHalyardAgentCarrierEnabled from command line.",
            halyardResult);
    }
    if (wdcpEnabled != 0 || halyardEnabled != 0) {
        const int displayResult = sys_getUIAppDisplayEnabled(app, hidden);
        if (displayResult != SYS_SUCCESS) {
            KESTAL_FAILURE(
                "sys_getUIAppDisplayEnabled failed, returned error code %d. Try sysintcli "
                "getUIAppDisplayEnabled from command line.",
                displayResult);
        }
        const int writeResult = sys_getUIAppWriteEnabled(app, locked);
        if (writeResult != SYS_SUCCESS) {
            KESTAL_FAILURE(
                "sys_getUIAppWriteEnabled failed, returned error code %d. Try sysintcli "
                "getUIAppWriteEnabled from command line.",
                writeResult);
        }
        KESTAL_DEBUG("App:%s, Hidden:%d, Locked:%d", app != nullptr ? app : "", *hidden, *locked);
    }
    KESTAL_DEBUG("END\n");
}

void AclComponent::GenerateFieldACLData(CTPP::CDT& node, std::string field, bool featureSupport,
                                        bool uiSupport) {
    KESTAL_SIGNATURE(
        "void AclComponent::GenerateFieldACLData(CTPP::CDT&, std::__cxx11::string, bool, bool)");
    KESTAL_DEBUG("BEGIN field[%s] featureSupport[%d] uiSupport[%d]", field.c_str(), featureSupport,
                 uiSupport);
    int show = 1;
    int lock = 0;
    if (!featureSupport || !uiSupport) {
        show = 0;
        lock = 1;
    } else {
        int wdcpEnabled = 1;
        const int wdcpResult = sys_getWDCPCarrierEnabled(&wdcpEnabled);
        if (wdcpResult != SYS_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " sys_getWDCPCarrierEnabled failed, returned error code %d. Try sysintcli "
                "getWDCPCarrierEnabled from command line.",
                wdcpResult);
        }
        int halyardEnabled = 1;
        const int halyardResult = sys_getHalyardAgentCarrierEnabled(&halyardEnabled);
        if (halyardResult != SYS_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " sys_getHalyardAgentCarrierEnabled failed, returned error code %d. Try sysintcli "
                "getHalyardAgentCarrierEnabled from command line.",
                halyardResult);
        }
        if (wdcpEnabled != 0 || halyardEnabled != 0) {
            const int showResult = sys_getUIFieldShowEnabled(field.c_str(), &show);
            if (showResult != SYS_SUCCESS) {
                KESTAL_FAILURE_UNSEPARATED(
                    " sys_getUIFieldShowEnabled(%s) failed, returned error code %d. Try sysintcli "
                    "getUIFieldShowEnabled from command line.",
                    field.c_str(), showResult);
            }
            const int lockResult = sys_getUIFieldLockEnabled(field.c_str(), &lock);
            if (lockResult != SYS_SUCCESS) {
                KESTAL_FAILURE_UNSEPARATED(
                    " sys_getUIFieldLockEnabled(%s) failed, returned error code %d. Try sysintcli "
                    "getUIFieldLockEnabled from command line.",
                    field.c_str(), lockResult);
            }
            KESTAL_DEBUG("App:%s, Show:%d, Locked:%d", field.c_str(), show, lock);
        }
    }
    node[field + "Show"] = show;
    node[std::move(field) + "Locked"] = lock;
    KESTAL_DEBUG("END show[%d] locked[%d]\n", show, lock);
}
