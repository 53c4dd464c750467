#include "bindings/linux/bus/bus_tree.h"

#include <string_view>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/text.h"

namespace binding {

namespace {

using nlohmann::json;

/// Object @p name of @p parent; made, unless it is one already.
json& MemberObject(json& parent, const std::string& name) {
    json& member = parent[name];
    if (!member.is_object()) {
        member = json::object();
    }
    return member;
}

/// The value of @p property in @p properties; null if it is not told.
const json& ValueOf(const json& properties, std::string_view property) {
    const std::size_t dot = property.find('.');
    const json& value = Member(properties, property.substr(0, dot));
    return dot == std::string_view::npos ? value : Member(value, property.substr(dot + 1));
}

void Erase(json& object, const json& names) {
    for (const json& name : names.is_array() ? names : json::array()) {
        if (name.is_string()) {
            object.erase(name.get<std::string>());
        }
    }
}

}  // namespace

void BusTree::Expect(const std::string& path) {
    MemberObject(objects, path);
}

void BusTree::Replace(const json& newObjects) {
    for (const auto& [path, interfaces] : newObjects.items()) {
        Forget(path);
        Add(path, interfaces);
    }
}

void BusTree::Add(const std::string& path, const json& interfaces) {
    Expect(path);
    if (!interfaces.is_object()) {
        return;
    }
    for (const auto& [interface, properties] : interfaces.items()) {
        Put(path, interface, properties);
    }
}

void BusTree::Remove(const std::string& path, const json& interfaces) {
    const auto found = objects.find(path);
    if (found == objects.end()) {
        return;
    }
    Erase(*found, interfaces);
    if (found->empty()) {
        objects.erase(found);
    }
}

void BusTree::Put(const std::string& path, const std::string& interface, const json& properties) {
    json& known = MemberObject(MemberObject(objects, path), interface);
    if (properties.is_object()) {
        known.update(properties);
        CheckKinds(path, interface, properties);
    }
}

void BusTree::Invalidate(const std::string& path, const std::string& interface, const json& names) {
    Erase(MemberObject(MemberObject(objects, path), interface), names);
}

void BusTree::CheckKinds(const std::string& path, const std::string& interface,
                         const json& properties) {
    for (const ExpectedKind& expected : kinds) {
        if (expected.interface != interface) {
            continue;
        }
        const json& value = ValueOf(properties, expected.property);
        if (value.is_null()) {
            continue;
        }
        const std::string property = interface + "." + std::string(expected.property);
        const std::string subject = service + " " + property;
        if (IsOfKind(value, expected.kind)) {
            complaints.Settle(subject, path, objects);
        } else {
            constexpr std::size_t kMostBytes = 256;
            complaints.Raise(subject, path,
                             service + ": " + Printable(path, kMostBytes) + ": " + property +
                                 " is " + DescribeKindOf(value) + ", not " +
                                 Describe(expected.kind));
        }
    }
}

}  // namespace binding
