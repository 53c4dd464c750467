#include "tools/kestal_sim/watched_call.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>

#include "bindings/device/codes.h"
#include "bindings/names/enumerations.h"
#include "platform/msgbus.h"
#include "platform/notification.h"
#include "tools/sysint_answers.h"
#include "tools/webui_commands.h"

namespace {

/// How many members of a list are printed.
constexpr std::size_t kMostMembers = 3;

/// What the library that makes the call says of codes.
struct Library {
    std::string_view prefix;
    int success;
    int bufferNeeded;
    binding::Enumeration codes;
    int bindingCodeBase;
};

const Library& LibraryOf(std::string_view call) {
    static const std::array<Library, 3> kLibraries = {{
        {"webui_", WEBUI_SUCCESS, WEBUI_BUFFER_NEEDED, binding::kWebuiStatus,
         binding::kWebuiCodeBase},
        {"MsgbusHandler::", MSGBUS_SUCCESS, MSGBUS_BUFFER_NEEDED, binding::kMsgbusResult, 0},
        {"sys_", SYS_SUCCESS, SYS_ERROR_BUFFER_NEEDED, binding::kSysResult, 0},
    }};
    const auto* const found =
        std::find_if(kLibraries.begin(), std::prev(kLibraries.end()),
                     [&](const Library& one) { return call.starts_with(one.prefix); });
    return *found;
}

/// @p text, in quotes and with escapes if it would not stand out otherwise.
std::string Printable(std::string_view text) {
    const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    const bool isPlain = quoted.size() == text.size() + 2 && !text.empty() &&
                         text.find(' ') == std::string_view::npos;
    return isPlain ? std::string(text) : quoted;
}

std::string ValueText(const Json& value) {
    if (value.is_string()) {
        return Printable(value.get<std::string>());
    }
    if (!value.is_object()) {
        return value.dump();
    }
    const auto name = value.find("name");
    if (name != value.end() && value.contains("value") && value["value"].is_number()) {
        // A number of an enumeration has a name or an explanation why not.
        return name->is_string() && !value["value"].is_null() ? name->get<std::string>()
                                                              : value["value"].dump();
    }
    std::string text;
    for (const auto& [key, member] : value.items()) {
        text += (text.empty() ? "" : " ") + key + "=" + ValueText(member);
    }
    return text;
}

/// The only value of a record stands without its name, which says no more than that of the call.
std::string RecordText(const Json& record) {
    return record.is_object() && record.size() == 1 ? ValueText(record.front()) : ValueText(record);
}

std::string ListText(const Json& list, std::size_t size) {
    std::string text = std::to_string(size) + (size == 1 ? " entry" : " entries");
    for (std::size_t index = 0; index < std::min(list.size(), kMostMembers); ++index) {
        text += (index == 0 ? ": " : ", ") + RecordText(list[index]);
    }
    return text + (size > kMostMembers ? ", ..." : "");
}

/// The size of an entry of the list that @p call answers.
std::size_t EntrySize(std::string_view call) {
    if (call == "sys_getConnectedDeviceList") {
        return sizeof(sys_connected_device_t);
    }
    return call.ends_with("_features") ? sizeof(webui_feature_t) : sizeof(webui_configuration_t);
}

std::string BlockText(const binding::WatchMessage& message) {
    std::string text = std::to_string(message.answerSize) + " bytes";
    std::int32_t count = 0;
    if (message.argument == ANS_NOTIFICATION_CHANNEL && message.answer.size() >= sizeof count) {
        std::memcpy(&count, message.answer.data(), sizeof count);
        text += ", " + std::to_string(count) + (count == 1 ? " notification" : " notifications");
    }
    return text;
}

std::string AnswerText(const binding::WatchMessage& message) {
    if (message.answerSize == 0) {
        return "done";
    }
    const std::string_view call = message.call;
    if (call.starts_with("MsgbusHandler::")) {
        return BlockText(message);
    }
    const Json answer = call.starts_with("webui_") ? DescribedWebuiAnswer(call, message.answer)
                                                   : DescribedSysAnswer(call, message.answer);
    if (answer.is_array()) {
        return ListText(answer, static_cast<std::size_t>(message.answerSize / EntrySize(call)));
    }
    return answer.is_null() ? std::to_string(message.answerSize) + " bytes" : RecordText(answer);
}

std::string ResultText(const binding::WatchMessage& message) {
    const Library& library = LibraryOf(message.call);
    if (message.code == library.success) {
        return AnswerText(message);
    }
    if (message.code == library.bufferNeeded) {
        return "needs a buffer";
    }
    const char* name = binding::NameOf(message.code, library.codes);
    if (name == nullptr) {
        name = binding::NameOf(std::int64_t{message.code} - library.bindingCodeBase,
                               binding::kBindingCode);
    }
    const std::string code = std::to_string(message.code);
    return "fails: " + (name == nullptr ? code : name + (" (" + code + ")"));
}

}  // namespace

std::string TimeText(std::chrono::nanoseconds time) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), "%9.3f ms",
                        std::chrono::duration<double, std::milli>(time).count());
    return text.data();
}

std::string WithoutControls(std::string_view text) {
    std::string visible(text);
    std::replace_if(
        visible.begin(), visible.end(),
        [](char one) { return static_cast<unsigned char>(one) < ' ' || one == '\x7f'; }, '?');
    return visible;
}

std::string LineAbout(const binding::WatchMessage& message) {
    std::string call(message.call);
    if (message.kind == binding::WatchKind::waits) {
        const auto whole = std::chrono::duration_cast<std::chrono::milliseconds>(message.time);
        return kNoTime + WithoutControls(call) +
               (message.time == binding::kForEver
                    ? " hangs ..."
                    : " waits for " + std::to_string(whole.count()) + " ms ...");
    }
    if (!message.argument.empty()) {
        call += " " + Printable(message.argument);
    }
    return TimeText(message.time) + "  " + WithoutControls(call + ": " + ResultText(message));
}
