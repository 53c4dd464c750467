#include "components/systemservice/system_service_component.h"

#include "components/status/status_component.h"
#include "components/systemservice/service_api.h"
#include "framework/log.h"
#include "framework/text_domain.h"
#include "platform/sysint.h"

namespace {

const std::string kConnectAction = "1";
const std::string kDisconnectAction = "0";

std::string ApiName(const CTPP::CDT& in) {
    return in.GetCDT("api").GetString();
}

}  // namespace

SystemServiceComponent::SystemServiceComponent() {
    KESTAL_SIGNATURE("SystemServiceComponent::SystemServiceComponent()");
    KESTAL_BEGIN();
    KESTAL_END();
}

PageError SystemServiceComponent::Dispatch(CTPP::CDT& out, int api) {
    KESTAL_SIGNATURE("virtual PageError SystemServiceComponent::Dispatch(CTPP::CDT&, int)");
    KESTAL_BEGIN();
    PageError result = PAGE_ERROR_FAILED;
    switch (api) {
        case SERVICE_API_NOTIFICATION:
            result = GetNotificationStatus(out);
            break;
        case SERVICE_API_STATUS:
            result = GetStatus(out);
            break;
        case SERVICE_API_CONNECT:
            result = PerformConnectAction(kConnectAction);
            break;
        case SERVICE_API_DISCONNECT:
            result = PerformConnectAction(kDisconnectAction);
            break;
        default:
            break;
    }
    KESTAL_END_RETURNING(result);
    return result;
}

PageError SystemServiceComponent::GetDynamicData(CTPP::CDT& out, const CTPP::CDT& in) {
    KESTAL_SIGNATURE(
        "virtual PageError SystemServiceComponent::GetDynamicData(CTPP::CDT&, const CTPP::CDT&)");
    KESTAL_BEGIN();
    apiName = ApiName(in);
    KESTAL_DEBUG_UNSEPARATED(" api called is %s", apiName.c_str());
    PageError result = PAGE_ERROR_FAILED;
    if (apiName == "status") {
        result = Dispatch(out, SERVICE_API_STATUS);
    } else if (apiName == "notification") {
        result = Dispatch(out, SERVICE_API_NOTIFICATION);
    }
    KESTAL_END_RETURNING(result);
    return result;
}

int SystemServiceComponent::ValidateFormData(const CTPP::CDT& in, CTPP::CDT& out) {
    KESTAL_SIGNATURE(
        "virtual int SystemServiceComponent::ValidateFormData(const CTPP::CDT&, CTPP::CDT&)");
    KESTAL_BEGIN();
    apiName = ApiName(in);
    KESTAL_DEBUG("Api called is %s", apiName.c_str());
    int errors = 0;
    if (apiName != "connect" && apiName != "disconnect" && apiName != "passcoderecovery") {
        errors = 1;
        KESTAL_FAILURE("system service unsupported operation");
        out["errorDesc"] = Translated("system_service_unsupport_operation_error_text");
    }
    KESTAL_END_RETURNING(errors);
    return errors;
}

PageError SystemServiceComponent::StoreData(const CTPP::CDT& /*in*/, CTPP::CDT& out) {
    KESTAL_SIGNATURE(
        "virtual PageError SystemServiceComponent::StoreData(const CTPP::CDT&, CTPP::CDT&)");
    KESTAL_BEGIN();
    PageError result = PAGE_ERROR_FAILED;
    if (apiName == "connect") {
        KESTAL_SYSLOG(TORU_DBG_NOTICE, "Establishing the cellular data connection");
        result = PerformConnectAction(kConnectAction);
    } else if (apiName == "disconnect") {
        KESTAL_SYSLOG(TORU_DBG_NOTICE, "Terminating the cellular data connection");
        result = PerformConnectAction(kDisconnectAction);
    }
    if (result != PAGE_ERROR_NONE) {
        out["errorDesc"] = Translated("system_service_failed_operation_error_text");
    }
    KESTAL_END_RETURNING(result);
    return result;
}

PageError SystemServiceComponent::PerformConnectAction(const std::string& action) {
    KESTAL_SIGNATURE("PageError SystemServiceComponent::PerformConnectAction(const string&)");
    KESTAL_BEGIN();
    int code = SYS_SUCCESS;
    if (action == kConnectAction) {
        code = sys_cellularDataConnect(0);
        if (code != SYS_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " -system interface API failed returning [%d]. Try sysintcli cellularDataConnect "
                "on the command line",
                code);
        }
    } else if (action == kDisconnectAction) {
        code = sys_cellularDataDisconnect(0);
        if (code != SYS_SUCCESS) {
            KESTAL_FAILURE_UNSEPARATED(
                " -system interface API failed returning [%d]. Try sysintcli "
                "cellularDataDisconnect on the command line",
                code);
        }
    }
    const PageError result = code == SYS_SUCCESS ? PAGE_ERROR_NONE : PAGE_ERROR_FAILED;
    KESTAL_END_RETURNING(result);
    return result;
}

PageError SystemServiceComponent::GetStatus(CTPP::CDT& out) {
    KESTAL_SIGNATURE("PageError SystemServiceComponent::GetStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    static StatusComponent status;
    static bool initialised = false;
    if (!initialised) {
        status.Init("");
        initialised = !status.WasCutShort();
    }
    status.GetData(out);
    KESTAL_END_RETURNING(PAGE_ERROR_NONE);
    return PAGE_ERROR_NONE;
}
