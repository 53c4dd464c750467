#include "tools/sysint_commands.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "tools/json_output.h"
#include "tools/list_reading.h"
#include "tools/sysint_answers.h"

namespace {

void CheckSys(const std::string& call, int code) {
    Check(call, code, SYS_SUCCESS);
}

/// A session of the SDK, which is open as long as the object exists.
class SdkRound {
  public:
    SdkRound() { CheckSys("sys_sdkInitialize", sys_sdkInitialize()); }
    ~SdkRound() {
        if (open) {
            (void)sys_sdkShutdown();
        }
    }
    SdkRound(const SdkRound&) = delete;
    SdkRound& operator=(const SdkRound&) = delete;

    void End() {
        open = false;
        CheckSys("sys_sdkShutdown", sys_sdkShutdown());
    }

  private:
    bool open = true;
};

using Names = std::vector<std::string>;
using Parameters = std::vector<Parameter>;

/// The call of a command: it fills the answer and returns its code.
using Call = std::function<int(const Arguments&, Json&)>;

/// A command that opens a session of the SDK for @p call alone. The name of the call is "sys_" and
/// the command's first name.
Command InRound(Names names, std::string description, Parameters parameters, Call call) {
    const std::string callName = "sys_" + names.front();
    return {
        .names = std::move(names),
        .description = std::move(description),
        .parameters = std::move(parameters),
        .run = [callName, call = std::move(call)](const Arguments& arguments, std::ostream& out) {
            SdkRound round;
            Json answer;
            CheckSys(callName, call(arguments, answer));
            if (!answer.is_null()) {
                WriteJson(out, answer);
            }
            round.End();
        }};
}

/// A query whose only parameter is its result, which @p describe turns into the answer.
template <typename T, typename Description>
Command Query(std::string name, std::string description, int (*call)(T*), Description describe) {
    return InRound({std::move(name)}, std::move(description), {},
                   [call, describe](const Arguments& /*arguments*/, Json& answer) {
                       T value{};
                       const int code = call(&value);
                       answer = describe(value);
                       return code;
                   });
}

/// A query that takes a name as its parameter and answers a number.
Command QueryByName(std::string name, std::string description, Parameter parameter,
                    int (*call)(const char*, int*), const char* field) {
    return InRound({std::move(name)}, std::move(description), {parameter},
                   [call, field](const Arguments& arguments, Json& answer) {
                       int value = 0;
                       const int code = call(arguments.Text(0), &value);
                       answer = Json::object({{field, value}});
                       return code;
                   });
}

/// A command for a call that does something but has no result.
Command Action(std::string name, std::string description, int (*call)(int)) {
    return InRound({std::move(name)}, std::move(description), {},
                   [call](const Arguments& /*arguments*/, Json& /*answer*/) { return call(0); });
}

int NetworkSelection(const Arguments& /*arguments*/, Json& answer) {
    int allowed = 0;
    int selected = 0;
    int scanStatus = 0;
    const int code = sys_getModemMnsInfo(&allowed, &selected, &scanStatus);
    answer = DescribedSelection({allowed, selected, scanStatus});
    return code;
}

int NrBand(const Arguments& /*arguments*/, Json& answer) {
    int band = 0;
    int second = 0;
    const int code = sys_getCellular5GBand(&band, &second);
    answer = DescribedBands({band, second});
    return code;
}

int GroupIdentifier(const Arguments& arguments, Json& answer) {
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
    std::uint8_t length = 0;
    const auto index = static_cast<std::uint8_t>(arguments.Number(0));
    const int code = sys_getSIMCarrierGID(gid.data(), &length, index);
    answer = Json::object({{"length", length}, {"gid", HexText(std::span(gid).first(length))}});
    return code;
}

int GuestProfile(const Arguments& arguments, Json& answer) {
    int enabled = 0;
    const int code =
        sys_getWiFiGuestProfileEnabled(static_cast<int>(arguments.Number(0)), &enabled);
    answer = Json::object({{"enabled", enabled}});
    return code;
}

int ConnectedDevices(const Arguments& /*arguments*/, Json& answer) {
    const auto devices = ReadList<sys_connected_device_t, unsigned int>(
        "sys_getConnectedDeviceList", SYS_SUCCESS, SYS_ERROR_BUFFER_NEEDED,
        sys_getConnectedDeviceList);
    Json list = Json::array();
    for (const sys_connected_device_t& device : devices) {
        list.push_back(Described(device));
    }
    answer = Json::object({{"devices", list}});
    return SYS_SUCCESS;
}

constexpr Parameter kField = {"FIELD", "Name of an input field of the web UI"};
constexpr Parameter kApp = {"APP", "Name of an application of the web UI"};
constexpr Parameter kIndex = {"INDEX", "Number of the group identifier", {{0, 255}}};
constexpr Parameter kProfile = {
    "PROFILE", "1 for 2.4 GHz, 2 for 5 GHz", {{SYS_WIFI_GUEST_2_4_GHZ, SYS_WIFI_GUEST_5_GHZ}}};

std::vector<Command> Queries() {
    return {
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name as text and as function
#define QUERY_COMMAND(Type, name, Meaning, field, description) \
    Query(#name, description, sys_##name, As<Meaning>(field)),
        SYSINT_QUERIES(QUERY_COMMAND)
#undef QUERY_COMMAND
    };
}

std::vector<Command> QueriesByName() {
    return {
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name as text and as function
#define NAMED_COMMAND(name, Subject, field, description) \
    QueryByName(#name, description, k##Subject, sys_##name, field),
        SYSINT_NAMED_QUERIES(NAMED_COMMAND)
#undef NAMED_COMMAND
    };
}

/// All commands, in the order in which platform/sysint.h declares their calls.
std::vector<Command> Commands() {
    std::vector<Command> all = Queries();
    const auto find = [&all](std::string_view name) {
        return std::find_if(all.begin(), all.end(),
                            [&](const Command& command) { return command.names.front() == name; });
    };
    const auto behind = [&](std::string_view name, std::vector<Command> commands) {
        all.insert(std::next(find(name)), std::make_move_iterator(commands.begin()),
                   std::make_move_iterator(commands.end()));
    };
    // Some log lines use this spelling.
    find("getCABandWidth")->names.emplace_back("getCABandwidth");
    behind("getHalyardAgentCarrierEnabled", QueriesByName());
    behind("getWatchdogInterval",
           {Action("cellularDataConnect", "Start the data call", sys_cellularDataConnect),
            Action("cellularDataDisconnect", "Stop the data call", sys_cellularDataDisconnect)});
    behind("getEnabledRadioTechnologies",
           {InRound({"getModemMnsInfo", "getMnsInfo"}, "State of the manual network selection", {},
                    NetworkSelection)});
    behind("getSIMStatus",
           {InRound({"getSIMCarrierGID"}, "A group identifier of the SIM, in hexadecimal", {kIndex},
                    GroupIdentifier)});
    behind("getCellularBand", {InRound({"getCellular5GBand"}, "NR band in use", {}, NrBand)});
    behind("getSambaShareInfo", {InRound({"getConnectedDeviceList"}, "The connected client devices",
                                         {}, ConnectedDevices)});
    behind("getWiFiMaxClients",
           {InRound({"getWiFiGuestProfileEnabled"}, "Whether a guest Wi-Fi profile is on",
                    {kProfile}, GuestProfile)});
    return all;
}

}  // namespace

Tool SysintTool(binding::Enumeration bindingCodes) {
    return {.name = "sysintcli",
            .description = "Makes a call of the device's system interface and prints its answer.",
            .codes = binding::kSysResult,
            .commands = Commands(),
            .bindingCodes = bindingCodes};
}
