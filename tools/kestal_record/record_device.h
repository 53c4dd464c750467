// Reading the whole device through platform/, in the form of a device document.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "tools/json_output.h"

/// What to ask the device.
struct Questions {
    /// Fields, applications, pages and languages, besides those that the web UI usually has.
    std::vector<std::string> names;
    /// Channels of the message bus, besides that of the notifications.
    std::vector<std::string> channels;
    /// Names of the codes of the binding.
    binding::Enumeration bindingCodes;
};

/// What a document cannot hold, for people.
using Remarks = std::set<std::string>;

/// Makes all queries of the platform in one session of the SDK. Returns the objects "sys", "webui"
/// and "msgbus" of a device document, where a call that fails is {"error": N}. Null stands for a
/// call that works but has no answer, which a document leaves out. Throws
/// std::runtime_error when an answer cannot be right, such as a list without end.
Json RecordDevice(const Questions& questions, Remarks& remarks);

/// Parts of RecordDevice. The session is open.
Json RecordSys(const Questions& questions, int initializeCode);
Json RecordWebui(const Questions& questions, Remarks& remarks);
Json RecordMsgbus(const Questions& questions);
