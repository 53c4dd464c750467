#include "bindings/simulator/device_reader.h"

#include <stdexcept>

#include "bindings/simulator/json_text.h"

namespace simulator {

namespace {

Device Compile(const nlohmann::ordered_json& document) {
    Device device;
    const Node root(document);
    Members members(root);
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

}  // namespace

int ReadFailure(const Node& node) {
    if (!node.Value().is_object() || !node.Value().contains("error")) {
        return 0;
    }
    if (node.Value().size() != 1) {
        node.Expected("{\"error\": N} alone", "other names beside \"error\"");
    }
    const Node code = node.Member("error");
    const auto number = NumberOf<int>(code.Value());
    if (!number || *number == SYS_SUCCESS || *number == WEBUI_SUCCESS) {
        code.Expected("a 32-bit integer other than 0 and 983040");
    }
    return *number;
}

Device ReadDevice(const std::string& file, const std::string& text) {
    try {
        return Compile(ParseStrictly(text));
    } catch (const SyntaxError& error) {
        throw std::runtime_error(file + ":" + error.Place() + ": " + error.what());
    } catch (const ValueError& error) {
        const auto place = FindValue(text, error.Path());
        throw std::runtime_error(file + ":" + std::to_string(place ? place->line : 1) + ": " +
                                 error.what());
    }
}

}  // namespace simulator
