#include "service/request_loop.h"

#include <clocale>
#include <memory>
#include <string>

#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"
#include "framework/attempt.h"
#include "framework/log.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "service/answer_encoding.h"
#include "service/process.h"
#include "service/request_acceptor.h"
#include "service/signal_handlers.h"
#include "service/standard_output.h"

namespace {

constexpr const char* kFastcgiMainLoop = "int fastcgi_main_loop()";

constexpr const char* kDefaultLanguage = "en_US";

/// One step of the loop, which @p name, a literal, tells from the others in the log.
template <typename Step>
bool Attempt(const char* name, Step step) {
    gOperationDeadline.Enter(name);
    return ::Attempt(kFastcgiMainLoop, name, step);
}

const char* OperationStep(int api) {
    switch (api) {
        case SERVICE_API_NOTIFICATION:
            return "request (notification)";
        case SERVICE_API_STATUS:
            return "request (status)";
        case SERVICE_API_CONNECT:
            return "request (connect)";
        case SERVICE_API_DISCONNECT:
            return "request (disconnect)";
        default:
            return "request (unknown operation)";
    }
}

void ApplyLanguage() {
    KESTAL_SIGNATURE(kFastcgiMainLoop);
    std::string language = kDefaultLanguage;
    webui_i18n_settings_t settings{};
    const int status = webui_get_i18n_settings(&settings);
    if (status == WEBUI_SUCCESS) {
        language = FixedText(settings.language);
    } else {
        KESTAL_FAILURE(
            "[%s]:[%s] - %s - webui_get_i18n_settings API failed returning [%d]. Try webui_cli "
            "get_internationalization_settings on command line",
            status);
    }
    KESTAL_DEBUG("[%s]:[%s] - %s - current language is %s", language.c_str());
    (void)std::setlocale(LC_MESSAGES, language.c_str());
}

std::string Json(const CTPP::CDT& answer) {
    KESTAL_SIGNATURE(kFastcgiMainLoop);
    std::string json;
    CTPP::CDT2JSON(answer, json);
    if (ReplaceInvalidUtf8(json)) {
        KESTAL_FAILURE("[%s]:[%s] - %s - the device has text that is no UTF-8, answered as U+FFFD");
    }
    return json;
}

/// Ready-made answers for when memory does not suffice to build one.
const std::string kLoggedInAnswer = R"({"loginStatus":1})";
const std::string kNotLoggedInAnswer = R"({"loginStatus":0})";
const std::string kDisabledAnswer = "WebUI feature disabled";

void AnswerEnabled(const FCGX_Request& request, SystemServiceComponent& component,
                   CgiHelper& helper, CTPP::CDT& answer, int loginStatus) {
    Attempt("request (language)", ApplyLanguage);
    int api = SERVICE_API_UNKNOWN;
    Attempt("request (routing)", [&] { api = get_service_api(request.envp); });
    Attempt(OperationStep(api), [&] { component.Dispatch(answer, api); });
    std::string json;
    const bool complete = Attempt("request (JSON)", [&] {
        // Once more, in case there was no memory for it before.
        answer["loginStatus"] = loginStatus;
        json = Json(answer);
    });
    const std::string& fallback = loginStatus == 1 ? kLoggedInAnswer : kNotLoggedInAnswer;
    Attempt("request (response)", [&] { helper.SendResponse(200, complete ? json : fallback); });
}

void ServeRequest(FCGX_Request& request, SystemServiceComponent& component, CgiHelper& helper) {
    KESTAL_SIGNATURE(kFastcgiMainLoop);
    const StandardOutputTo output(request.out);
    CTPP::CDT answer;
    gOperationDeadline.Enter("request (login status)");
    const int loginStatus = GetLoginStatus(&helper, request);
    Attempt("request (login status)", [&] { answer["loginStatus"] = loginStatus; });
    KESTAL_DEBUG("[%s]:[%s] - %s - Starting %s request", KESTAL_MODULE);
    bool initialized = false;
    Attempt("request (start of the SDK)", [&] { initialized = InitializeSysinterface(); });
    if (!initialized) {
        KESTAL_FAILURE("[%s]:[%s] - %s - sysinterface initialization failed by returning [%d]",
                       initialized);
    }
    int enabled = 0;
    Attempt("request (carrier switch)", [&] { sys_getWebUICarrierEnabled(&enabled); });
    if (enabled == 0) {
        Attempt("request (response)", [&] { helper.SendResponse(501, kDisabledAnswer); });
    } else {
        AnswerEnabled(request, component, helper, answer, loginStatus);
    }
    Attempt("request (end of the SDK)", [] { UninitializeSysinterface(); });
    KESTAL_DEBUG("[%s]:[%s] - %s - End %s request", KESTAL_MODULE);
    WaitIfEndingByFatalSignal();
    gOperationDeadline.Enter("request (end)");
    FCGX_Finish_r(&request);
}

void ServeRequests(FCGX_Request& request) {
    KESTAL_SIGNATURE(kFastcgiMainLoop);
    SystemServiceComponent component;
    std::unique_ptr<CgiHelper> helper;
    Attempt("response writer", [&] { helper.reset(CgiHelper::GetInstance()); });
    if (helper == nullptr) {
        KESTAL_SYSLOG(TORU_DBG_NOTICE, "[%s]:[%s] - %s - Failed to create CgiHelper object");
        return;
    }
    const auto setType = [&] { helper->SetHeader("Content-Type", "application/json"); };
    bool typed = Attempt("content type", setType);
    RequestAcceptor acceptor(request);
    while (acceptor.Accept() >= 0) {
        // Once more, in case there was no memory for it before.
        typed = typed || Attempt("content type", setType);
        ServeRequest(request, component, *helper);
    }
}

}  // namespace

int fastcgi_main_loop() {
    KESTAL_SIGNATURE(kFastcgiMainLoop);
    KESTAL_DEBUG("[%s]:[%s] - %s BEGIN");
    FCGX_Request request{};
    int status = FCGX_Init();
    if (status != 0) {
        KESTAL_FAILURE("[%s]:[%s] - %s - Failed FCGX_Init - status = %d", status);
    } else {
        status = FCGX_InitRequest(&request, 0, 0);
        if (status != 0) {
            KESTAL_SYSLOG(TORU_DBG_NOTICE, "[%s]:[%s] - %s - Failed FCGX_InitRequest - status = %d",
                          status);
        } else {
            ServeRequests(request);
        }
    }
    KESTAL_DEBUG("[%s]:[%s] - %s END returning %d", status);
    return status;
}
