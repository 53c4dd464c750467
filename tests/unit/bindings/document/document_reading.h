// Device documents read from texts.
#pragma once

#include <stdexcept>
#include <string>

#include "bindings/document/device_reader.h"

inline binding::Device Read(const std::string& text) {
    return binding::ReadDevice("device.json", text);
}

/// The error message for a document; empty when the document is right.
inline std::string Complaint(const std::string& text) {
    try {
        Read(text);
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

/// The error message for the value @p text of the entry @p name of "sys", which is in line 3.
inline std::string SysComplaint(const std::string& name, const std::string& text) {
    return Complaint("{\n\"sys\": {\n\"" + name + "\": " + text + "\n}\n}");
}

inline std::string WebuiComplaint(const std::string& name, const std::string& text) {
    return Complaint("{\n\"webui\": {\n\"" + name + "\": " + text + "\n}\n}");
}

inline std::string ChannelComplaint(const std::string& text) {
    return Complaint("{\n\"msgbus\": {\n\"a\": " + text + "\n}\n}");
}
