#include "components/systemservice/service_api.h"

#include <string_view>

#include "framework/log.h"
#include "service/process.h"
#include "service/request_loop.h"

namespace {

constexpr std::string_view kPrefix = "/srv";

/// Searched in this order, because "disconnect" contains "connect".
struct ApiName {
    std::string_view text;
    ServiceApi api;
};
constexpr ApiName kApiNames[] = {
    {"notification", SERVICE_API_NOTIFICATION},
    {"status", SERVICE_API_STATUS},
    {"disconnect", SERVICE_API_DISCONNECT},
    {"connect", SERVICE_API_CONNECT},
};

ServiceApi FindApi(std::string_view uri) {
    if (uri.size() > kPrefix.size()) {
        const std::string_view name = uri.substr(kPrefix.size() + 1);
        for (const ApiName& candidate : kApiNames) {
            if (name.find(candidate.text) != std::string_view::npos) {
                return candidate.api;
            }
        }
    }
    return SERVICE_API_UNKNOWN;
}

}  // namespace

int get_service_api(FCGX_ParamArray envp) {
    KESTAL_SIGNATURE("int get_service_api(FCGX_ParamArray)");
    KESTAL_DEBUG_UNSEPARATED(" BEGIN");
    const char* given = FCGX_GetParam("REQUEST_URI", envp);
    const char* uri = given == nullptr ? "" : given;
    KESTAL_LOG(TORU_DBG_INFO, "%s %s request received", gProgramName, uri);
    const ServiceApi api = FindApi(uri);
    KESTAL_DEBUG_UNSEPARATED(" END returning %d", api);
    return api;
}
