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

constexpr const char* kDefaultLanguage = "en_US";

/// Runs one step of the loop. Each step is attempted on its own, so that one that throws, most
/// likely for lack of memory, costs its part of the answer but neither the request nor the process.
/// @p name, a literal, tells it from the other steps, both in the log and in the message of a
/// process that is stuck.
template <typename Step>
bool AttemptStep(const char* signature, const char* name, Step step) {
    gOperationDeadline.Enter(name);
    return Attempt(signature, name, step);
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

void ApplyLanguage(const char* signature) {
    std::string language = kDefaultLanguage;
    webui_i18n_settings_t settings{};
    const int status = webui_get_i18n_settings(&settings);
    if (status == WEBUI_SUCCESS) {
        language = FixedText(settings.language);
    } else {
        KESTAL_FAILURE(
            "webui_get_i18n_settings API failed returning [%d]. Try webui_cli "
            "get_internationalization_settings on command line",
            status);
    }
    KESTAL_DEBUG("current language is %s", language.c_str());
    (void)std::setlocale(LC_MESSAGES, language.c_str());
}

std::string Json(const char* signature, const CTPP::CDT& answer) {
    std::string json;
    CTPP::CDT2JSON(answer, json);
    if (ReplaceInvalidUtf8(json)) {
        KESTAL_FAILURE("the device has text that is no UTF-8, answered as U+FFFD");
    }
    return json;
}

/// Answers that are sent when there is not enough memory to build one. They are made at the start
/// of the process.
const std::string kLoggedInAnswer = R"({"loginStatus":1})";
const std::string kNotLoggedInAnswer = R"({"loginStatus":0})";
const std::string kDisabledAnswer = "WebUI feature disabled";

void AnswerEnabled(const char* signature, const FCGX_Request& request,
                   SystemServiceComponent& component, CgiHelper& helper, CTPP::CDT& answer,
                   int loginStatus) {
    AttemptStep(signature, "request (language)", [&] { ApplyLanguage(signature); });
    int api = SERVICE_API_UNKNOWN;
    AttemptStep(signature, "request (routing)", [&] { api = get_service_api(request.envp); });
    AttemptStep(signature, OperationStep(api), [&] { component.Dispatch(answer, api); });
    std::string json;
    const bool complete = AttemptStep(signature, "request (JSON)", [&] {
        // Set again, in case there was no memory for it the first time.
        answer["loginStatus"] = loginStatus;
        json = Json(signature, answer);
    });
    const std::string& fallback = loginStatus == 1 ? kLoggedInAnswer : kNotLoggedInAnswer;
    AttemptStep(signature, "request (response)",
                [&] { helper.SendResponse(200, complete ? json : fallback); });
}

void ServeRequest(const char* signature, FCGX_Request& request, SystemServiceComponent& component,
                  CgiHelper& helper) {
    const StandardOutputTo output(request.out);
    CTPP::CDT answer;
    gOperationDeadline.Enter("request (login status)");
    const int loginStatus = GetLoginStatus(&helper, request);
    AttemptStep(signature, "request (login status)", [&] { answer["loginStatus"] = loginStatus; });
    KESTAL_DEBUG("Starting %s request", KESTAL_MODULE);
    bool initialized = false;
    AttemptStep(signature, "request (start of the SDK)",
                [&] { initialized = InitializeSysinterface(); });
    if (!initialized) {
        KESTAL_FAILURE("sysinterface initialization failed by returning [%d]", initialized);
    }
    int enabled = 0;
    AttemptStep(signature, "request (carrier switch)",
                [&] { sys_getWebUICarrierEnabled(&enabled); });
    if (enabled == 0) {
        AttemptStep(signature, "request (response)",
                    [&] { helper.SendResponse(501, kDisabledAnswer); });
    } else {
        AnswerEnabled(signature, request, component, helper, answer, loginStatus);
    }
    AttemptStep(signature, "request (end of the SDK)", [] { UninitializeSysinterface(); });
    KESTAL_DEBUG("End %s request", KESTAL_MODULE);
    WaitIfProcessIsEnding();
    gOperationDeadline.Enter("request (end)");
    FCGX_Finish_r(&request);
}

void ServeRequests(const char* signature, FCGX_Request& request) {
    SystemServiceComponent component;
    std::unique_ptr<CgiHelper> helper;
    AttemptStep(signature, "response writer", [&] { helper.reset(CgiHelper::GetInstance()); });
    if (helper == nullptr) {
        KESTAL_SYSLOG(TORU_DBG_NOTICE, "Failed to create CgiHelper object");
        return;
    }
    const auto setType = [&] { helper->SetHeader("Content-Type", "application/json"); };
    bool typed = AttemptStep(signature, "content type", setType);
    RequestAcceptor acceptor(request);
    while (acceptor.Accept() >= 0) {
        // Try again if there was no memory for it before.
        typed = typed || AttemptStep(signature, "content type", setType);
        ServeRequest(signature, request, component, *helper);
    }
}

}  // namespace

int fastcgi_main_loop() {
    KESTAL_SIGNATURE("int fastcgi_main_loop()");
    KESTAL_DEBUG_UNSEPARATED(" BEGIN");
    FCGX_Request request{};
    int status = FCGX_Init();
    if (status != 0) {
        KESTAL_FAILURE("Failed FCGX_Init - status = %d", status);
    } else {
        status = FCGX_InitRequest(&request, 0, 0);
        if (status != 0) {
            KESTAL_SYSLOG(TORU_DBG_NOTICE, "Failed FCGX_InitRequest - status = %d", status);
        } else {
            ServeRequests(signature, request);
        }
    }
    KESTAL_DEBUG_UNSEPARATED(" END returning %d", status);
    return status;
}
