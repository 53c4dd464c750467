// From document to device.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "bindings/device/device.h"
#include "bindings/device/fault.h"
#include "bindings/document/answer_reader.h"
#include "platform/notification.h"

namespace binding {

/// Compiles the document @p text. Throws std::runtime_error, whose text begins with @p file and the
/// line, when anything in it is wrong. A fault that is also one of @p earlier, those of an earlier
/// version of the document, remembers the calls that it has seen.
Device ReadDevice(const std::string& file, const std::string& text, const Faults& earlier = {});

/// Compiles a parsed document. Throws ValueError.
Device CompileDevice(const nlohmann::ordered_json& document, const Faults& earlier = {});

/// Parts of CompileDevice: the objects "sys", "webui" and "msgbus".
void ReadSys(const Node& node, Device& device);
void ReadWebui(const Node& node, Device& device);
void ReadMsgbus(const Node& node, Device& device);

/// Reads an element of a list of notifications. What it does not name stays as it is in @p record,
/// but for the flags.
void ReadNotification(const Node& node, AnsNotificationRecord& record);

}  // namespace binding
