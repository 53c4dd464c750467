// Objects of the binding. Their constructors and destructors run through the probe, as calls do.
#pragma once

#include <memory>
#include <string>

#include "conformance/probe.h"

namespace conformance {

/// Owns @p object, which may be null; its destructor runs through @p probe. @p type is the name of
/// the class that platform/ declares.
template <typename Object>
std::shared_ptr<Object> Own(Probe& probe, const std::string& type, Object* object) {
    if (object == nullptr) {
        return nullptr;
    }
    return {object, [&probe, type](Object* ended) {
                (void)probe.Make(type + "::~" + type, [&] { delete ended; });
            }};
}

/// Makes an object; null if its constructor has thrown, which is then a finding.
template <typename Object, typename... Arguments>
std::shared_ptr<Object> MakeObject(Probe& probe, const std::string& type, Arguments... arguments) {
    Object* object = nullptr;
    (void)probe.Make(type + "::" + type, [&] { object = new Object(arguments...); });
    return Own(probe, type, object);
}

/// The same, and prints a line: `type::type(told)`.
template <typename Object, typename... Arguments>
std::shared_ptr<Object> TellObject(Probe& probe, const std::string& type, const std::string& told,
                                   Arguments... arguments) {
    Object* object = nullptr;
    probe.Tell(
        type + "::" + type, told, [&] { object = new Object(arguments...); },
        [] { return std::string(); });
    return Own(probe, type, object);
}

}  // namespace conformance
