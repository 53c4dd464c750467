#include "bindings/document/device_reader.h"

#include <nlohmann/json.hpp>

#include "bindings/document/read_document.h"

namespace binding {

Device CompileDevice(const nlohmann::ordered_json& document) {
    Device device;
    const Node root(document);
    Members members(root);
    if (const auto title = members.Find("title"); title && title->Text() == nullptr) {
        title->Expected("a text");
    }
    if (const auto sys = members.Find("sys")) {
        ReadSys(*sys, device);
    }
    if (const auto webui = members.Find("webui")) {
        ReadWebui(*webui, device);
    }
    if (const auto msgbus = members.Find("msgbus")) {
        ReadMsgbus(*msgbus, device);
    }
    members.RejectOthers();
    return device;
}

int ReadFailure(const Node& node, const std::function<void(const Node&)>& checkHealed) {
    if (!node.IsObject() || !node.HasMember("error")) {
        return 0;
    }
    const bool keeps = node.HasMember(kHealedName);
    if (node.Size() != (keeps ? 2U : 1U)) {
        node.Expected("{\"error\": N} alone", "other names beside \"error\"");
    }
    if (keeps && !node.Value().at(kHealedName).is_null()) {
        checkHealed(node.Member(kHealedName));
    }
    constexpr const char* kExpected = "a 32-bit integer other than 0 and 983040";
    const Node code = node.Member("error");
    const auto number = NumberOf<int>(code.Value());
    if (!number) {
        return static_cast<int>(ReadName(code, kExpected));
    }
    if (*number == SYS_SUCCESS || *number == WEBUI_SUCCESS) {
        code.Expected(kExpected);
    }
    return *number;
}

Device ReadDevice(const std::string& file, const std::string& text) {
    return ReadDocument(file, text, CompileDevice);
}

}  // namespace binding
