// Answers of the platform's calls, which status and notifications use: records of any bytes and any
// code. The input has a line for each answer that differs from the usual one:
//
//     CALL[.OUTPUT][@OFFSET] CODE BYTES
//
// BYTES (see Unescaped) overwrite the output from OFFSET on. Without OUTPUT, that is the call's
// first output. For a call that fills a list, CALL is the list, CALL.count is the number of records
// that the call says it has written, and CALL.needed is the number that it asks room for.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <set>

#include "bindings/recording/recording.h"
#include "components/notification/notification_block.h"
#include "components/status/status_component.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"
#include "declared_calls.h"
#include "fuzz/answers.h"
#include "fuzz/target.h"
#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "platform/webui.h"

// A device may announce any number of records. This calloc refuses large numbers of them; its limit
// is low enough for the fuzzer to stay fast.
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    constexpr std::size_t kLimit = std::size_t{1} << 24U;
    return size != 0 && count > kLimit / size ? nullptr : __real_calloc(count, size);
}
}

namespace {

constexpr std::size_t kInt = sizeof(std::int32_t);
constexpr std::size_t kLongestList = 1 << 16;

/// A call and the sizes of its outputs.
struct Call {
    const char* name;
    std::vector<std::size_t> outputs;
    int success = 0;
};

/// A call that is made twice: first without a buffer, to learn the size, then with a buffer.
struct ListCall {
    const char* name;
    std::size_t recordSize;
    int bufferNeeded;
    int success = 0;
};

/// Declared calls that this target does not answer.
struct Omission {
    const char* prefix;  ///< beginning of their names
    const char* reason;
};

constexpr const char* kNoRequest = "no status and no notification asks for it";
constexpr const char* kNoRecord = "it answers with nothing but a code; faults_test tries all codes";

constexpr Omission kOmissions[] = {
    {"sys_getUIFieldShowEnabled", kNoRequest},
    {"sys_getUIFieldLockEnabled", kNoRequest},
    {"sys_getUIAppDisplayEnabled", kNoRequest},
    {"sys_getUIAppWriteEnabled", kNoRequest},
    {"sys_getWDCPCarrierEnabled", kNoRequest},
    {"sys_getHalyardAgentCarrierEnabled", kNoRequest},
    {"webui_get_app_features", kNoRequest},
    {"webui_get_app_configurations", kNoRequest},
    {"webui_get_external_uri_data", kNoRequest},
    {"sys_getWebUICarrierEnabled", "it is asked before a request comes to a component"},
    {"sys_getWatchdogInterval", "it is asked before there are requests"},
    {"sys_sdkInitialize", kNoRecord},
    {"sys_sdkShutdown", kNoRecord},
    {"sys_cellularDataConnect", kNoRecord},
    {"sys_cellularDataDisconnect", kNoRecord},
    {"toru_dbg_", "logs bring nothing"},
    {"watchdog_application_", "keep-alives bring nothing"},
    {"MaintenanceThread", "the keep-alive thread is no part of a request"},
    {"LanguageSupport::", "the language is chosen before there are requests"},
    {"AuthSession::", "sessions are the caller's; target request has them"},
    {"CgiHelper::", "requests and responses are the caller's; target request has them"},
    {"GetIPAddressFamily", "addresses are the caller's; target request has them"},
};

const Omission* OmissionOf(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kOmissions), std::end(kOmissions),
                     [&](const Omission& row) { return name.starts_with(row.prefix); });
    return found == std::end(kOmissions) ? nullptr : found;
}

const std::vector<Call>& Calls() {
    static const std::vector<Call> calls = [] {
        std::vector<Call> all = {
            {"sys_getSIMCarrierGID", {SYS_SIM_CARRIER_GID_SIZE, 1}},
            {"sys_getModemMnsInfo", {kInt, kInt, kInt}},
            {"sys_getCellular5GBand", {kInt, kInt}},
            {"sys_getWiFiGuestProfileEnabled", {kInt}},
            {"webui_get_uri_data", {sizeof(webui_uri_data_t)}, WEBUI_SUCCESS},
            {"webui_get_i18n_settings", {sizeof(webui_i18n_settings_t)}, WEBUI_SUCCESS},
            {"webui_get_software_update_status",
             {sizeof(webui_software_update_status_t)},
             WEBUI_SUCCESS},
            {"webui_get_software_installation_duration", {kInt}, WEBUI_SUCCESS},
            {"webui_get_software_update_custom_msgs",
             {sizeof(SoftwareUpdateCustomMessages)},
             WEBUI_SUCCESS},
            {"MsgbusHandler::MsgbusHandler", {}},
            {"MsgbusHandler::Initialize", {}},
            {"MsgbusHandler::Uninitialize", {}},
        };
        const auto query = [&all](const char* name, std::size_t size) {
            if (OmissionOf(name) == nullptr) {
                all.push_back({name, {size}});
            }
        };
#define FUZZ_QUERY(Type, name, Meaning, field, description) query("sys_" #name, sizeof(Type));
        SYSINT_QUERIES(FUZZ_QUERY)
#undef FUZZ_QUERY
        return all;
    }();
    return calls;
}

const std::vector<ListCall>& ListCalls() {
    static const std::vector<ListCall> calls = {
        {"webui_get_common_features", sizeof(webui_feature_t), WEBUI_BUFFER_NEEDED, WEBUI_SUCCESS},
        {"webui_get_common_configurations", sizeof(webui_configuration_t), WEBUI_BUFFER_NEEDED,
         WEBUI_SUCCESS},
        {"sys_getConnectedDeviceList", sizeof(sys_connected_device_t), SYS_ERROR_BUFFER_NEEDED},
        {"MsgbusHandler::GetData", 1, MSGBUS_BUFFER_NEEDED},
    };
    return calls;
}

/// Requires that this target answers each declared call or omits it for a reason, and that it uses
/// no name that is not declared.
void RequireDeclaredCalls() {
    std::set<std::string, std::less<>> answered;
    for (const Call& call : Calls()) {
        answered.insert(call.name);
    }
    for (const ListCall& call : ListCalls()) {
        answered.insert(call.name);
    }
    std::set<std::string_view> omitted;
    for (const DeclaredCall& declared : kDeclaredCalls) {
        const std::string_view name = declared.name;
        const Omission* const omission = OmissionOf(name);
        const bool isOmitted = omission != nullptr;
        Require((answered.erase(declared.name) == 0) == isOmitted,
                "each declared call is either answered or left out", name);
        if (isOmitted) {
            omitted.insert(omission->prefix);
        }
    }
    Require(answered.empty(), "only declared calls are answered",
            answered.empty() ? "" : *answered.begin());
    for (const Omission& row : kOmissions) {
        Require(omitted.count(row.prefix) != 0, "only declared calls are left out", row.prefix);
    }
}

/// One output of a call, and the code of the call.
struct Reply {
    int code = 0;
    std::string bytes;
    std::size_t size = 0;  ///< largest size of the output
};

using Replies = std::map<std::string, Reply, std::less<>>;

std::string NumberBytes(std::int32_t number) {
    std::string bytes(sizeof(number), '\0');
    std::memcpy(bytes.data(), &number, sizeof(number));
    return bytes;
}

std::int32_t NumberOf(const std::string& bytes) {
    std::int32_t number = 0;
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof(number)));
    return number;
}

std::string OutputName(const std::string& call, std::size_t output) {
    return output == 0 ? call : call + "." + std::to_string(output);
}

/// The answers of a device on which everything works: each number is 1, each record is empty, and
/// each list has two records.
Replies UsualReplies() {
    Replies replies;
    for (const Call& call : Calls()) {
        replies[call.name].code = call.success;
        for (std::size_t output = 0; output < call.outputs.size(); ++output) {
            const std::size_t size = call.outputs.at(output);
            replies[OutputName(call.name, output)] = {
                call.success, size == kInt ? NumberBytes(1) : std::string(size, '\0'), size};
        }
    }
    for (const ListCall& call : ListCalls()) {
        const std::string name = call.name;
        replies[name] = {call.success, "", kLongestList};
        replies[name + ".count"] = {call.success, NumberBytes(2), kInt};
        replies[name + ".needed"] = {call.bufferNeeded, NumberBytes(2), kInt};
    }
    return replies;
}

void Change(Replies& replies, std::string_view line) {
    std::string_view key = TakeUntil(line, ' ');
    const std::string_view name = TakeUntil(key, '@');
    const auto found = replies.find(name);
    if (found == replies.end()) {
        return;
    }
    Reply& reply = found->second;
    reply.code = static_cast<int>(Integer(TakeUntil(line, ' ')));
    const auto offset = static_cast<std::size_t>(
        std::clamp<std::int64_t>(Integer(key), 0, static_cast<std::int64_t>(reply.size)));
    const std::string bytes = Unescaped(line).substr(0, reply.size - offset);
    reply.bytes.resize(std::max(reply.bytes.size(), offset + bytes.size()));
    std::copy(bytes.begin(), bytes.end(),
              reply.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

void Write(recording::Answer& answer, const std::string& bytes) {
    answer.WritesRecords(std::vector<char>(bytes.begin(), bytes.end()));
}

void Script(const Replies& replies) {
    recording::Reset();
    for (const Call& call : Calls()) {
        recording::Answer& answer = recording::Given(call.name).Returns(replies.at(call.name).code);
        for (std::size_t output = 0; output < call.outputs.size(); ++output) {
            Write(answer, replies.at(OutputName(call.name, output)).bytes);
        }
    }
    for (const ListCall& call : ListCalls()) {
        const std::string name = call.name;
        const Reply& needed = replies.at(name + ".needed");
        Write(recording::Given(name).Returns(needed.code).WritesNothing(), needed.bytes);
        // The call writes no more records than the buffer has room for.
        const Reply& list = replies.at(name);
        const auto room = static_cast<std::uint64_t>(std::max(NumberOf(needed.bytes), 0));
        recording::Answer& answer = recording::Given(name).Returns(list.code);
        const auto size = std::min<std::uint64_t>(room * call.recordSize, list.bytes.size());
        Write(answer, list.bytes.substr(0, static_cast<std::size_t>(size)));
        Write(answer, replies.at(name + ".count").bytes);
    }
}

/// Requires that the service has made none of the calls that this target leaves out.
void RequireOmissions() {
    for (const Omission& row : kOmissions) {
        Require(recording::TranscriptText(row.prefix).empty(), "a call left out is not made",
                row.prefix);
    }
}

std::string Json(const CTPP::CDT& tree) {
    std::string json;
    CTPP::CDT2JSON(tree, json);
    return json;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::once_flag once;
    std::call_once(once, RequireDeclaredCalls);
    const std::string input = InputText(data, size);
    Replies replies = UsualReplies();
    for (const std::string_view line : LinesOf(input)) {
        Change(replies, line);
    }

    Script(replies);
    StatusComponent status;
    status.Init("");
    // The second answer may use caches that the first one has filled.
    for (int round = 0; round < 2; ++round) {
        Script(replies);
        CTPP::CDT answer;
        Require(status.GetData(answer) == PAGE_ERROR_NONE, "the status is always told");
        RequireOmissions();
        RequireJson(Json(answer));
    }

    SystemServiceComponent service;
    for (int round = 0; round < 2; ++round) {
        Script(replies);
        CTPP::CDT answer;
        Require(service.Dispatch(answer, SERVICE_API_NOTIFICATION) == PAGE_ERROR_NONE,
                "the notifications are always told");
        RequireOmissions();
        RequireJson(Json(answer));
    }
    return 0;
}
