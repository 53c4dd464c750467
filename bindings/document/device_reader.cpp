#include "bindings/document/device_reader.h"

#include <nlohmann/json.hpp>

#include "bindings/document/fault_reader.h"
#include "bindings/document/read_document.h"

namespace binding {

Device CompileDevice(const nlohmann::ordered_json& document, const Faults& earlier) {
    Device device;
    FaultCollector faults(earlier);
    const Node root(document, &faults);
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
    device.faults = faults.Collected();
    return device;
}

Device ReadDevice(const std::string& file, const std::string& text, const Faults& earlier) {
    return ReadDocument(file, text, [&](const nlohmann::ordered_json& document) {
        return CompileDevice(document, earlier);
    });
}

}  // namespace binding
