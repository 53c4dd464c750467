#include "bindings/simulator/node.h"

#include <algorithm>
#include <cstring>

namespace simulator {

namespace {

std::string Description(const nlohmann::ordered_json& value) {
    switch (value.type()) {
        case nlohmann::json::value_t::object:
            return "an object";
        case nlohmann::json::value_t::array:
            return "a list";
        case nlohmann::json::value_t::string:
            return "a text";
        default:
            return value.dump();
    }
}

template <typename T>
void ReadNumber(const Node& node, T& number, const char* expected) {
    const auto found = NumberOf<T>(node.Value());
    if (!found) {
        node.Expected(expected);
    }
    number = *found;
}

}  // namespace

KeyPath Node::Path() const {
    KeyPath path;
    for (const Node* node = this; node->parent != nullptr; node = node->parent) {
        path.push_back(node->step);
    }
    std::reverse(path.begin(), path.end());
    return path;
}

void Node::Expected(const std::string& expected) const {
    Expected(expected, Description(value));
}

void Node::Expected(const std::string& expected, const std::string& found) const {
    throw ValueError(Path(), Complaint(expected, found));
}

std::string Node::Complaint(const std::string& expected, const std::string& found) const {
    const std::string path = PathText(Path());
    return (path.empty() ? "" : path + ": ") + "expected " + expected +
           (mayFail ? " or {\"error\": N}" : "") + ", found " + found;
}

void Node::MustBeObject() const {
    if (!value.is_object()) {
        Expected("an object");
    }
}

void Node::MustBeList() const {
    if (!value.is_array()) {
        Expected("a list");
    }
}

void Read(const Node& node, std::uint8_t& number) {
    ReadNumber(node, number, "a number from 0 to 255");
}

void Read(const Node& node, std::int32_t& number) {
    ReadNumber(node, number, "a 32-bit integer");
}

void Read(const Node& node, std::uint32_t& number) {
    ReadNumber(node, number, "an unsigned 32-bit integer");
}

void Read(const Node& node, std::uint64_t& number) {
    ReadNumber(node, number, "an unsigned 64-bit integer");
}

void Read(const Node& node, bool& value) {
    if (!node.Value().is_boolean()) {
        node.Expected("true or false");
    }
    value = node.Value().get<bool>();
}

void ReadText(const Node& node, std::span<char> field) {
    const std::string expected = "a text of at most " + std::to_string(field.size() - 1) + " bytes";
    if (!node.Value().is_string()) {
        node.Expected(expected);
    }
    const auto& text = node.Value().get_ref<const std::string&>();
    if (text.size() >= field.size()) {
        node.Expected(expected, "one of " + std::to_string(text.size()) + " bytes");
    }
    if (text.find('\0') != std::string::npos) {
        node.Expected(expected, "one with a NUL in it");
    }
    std::memcpy(field.data(), text.c_str(), text.size() + 1);
}

std::optional<Node> Members::Find(const std::string& name) {
    names.push_back(name);
    if (!object.Value().contains(name)) {
        return std::nullopt;
    }
    return object.Member(name);
}

void Members::RejectOthers(const std::string& what) const {
    for (const auto& item : object.Value().items()) {
        if (std::find(names.begin(), names.end(), item.key()) == names.end()) {
            const Node member = object.Member(item.key());
            throw UnknownName(member.Path(), member.Complaint(what, "an unknown name"), names);
        }
    }
}

void Members::RejectOthers() const {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    RejectOthers("one of " + list);
}

}  // namespace simulator
