#include "bindings/document/node.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

#include "bindings/document/value_names.h"
#include "bindings/names/nearest_name.h"

namespace binding {

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

}  // namespace

template <typename T>
std::optional<T> NumberOf(const nlohmann::ordered_json& value) {
    if (value.is_number_unsigned() && std::in_range<T>(value.get<std::uint64_t>())) {
        return static_cast<T>(value.get<std::uint64_t>());
    }
    if (value.is_number_integer() && !value.is_number_unsigned() &&
        std::in_range<T>(value.get<std::int64_t>())) {
        return static_cast<T>(value.get<std::int64_t>());
    }
    return std::nullopt;
}

template std::optional<std::uint8_t> NumberOf<std::uint8_t>(const nlohmann::ordered_json& value);
template std::optional<std::int32_t> NumberOf<std::int32_t>(const nlohmann::ordered_json& value);
template std::optional<std::uint32_t> NumberOf<std::uint32_t>(const nlohmann::ordered_json& value);
template std::optional<std::int64_t> NumberOf<std::int64_t>(const nlohmann::ordered_json& value);
template std::optional<std::uint64_t> NumberOf<std::uint64_t>(const nlohmann::ordered_json& value);

namespace {

/// A text as a complaint shows it. Only short ones are shown, because a complaint is one line.
std::string Shown(const std::string& text) {
    constexpr std::size_t kLongest = 40;
    return text.size() > kLongest ? "a text" : "'" + text + "'";
}

template <typename T>
void ReadNumber(const Node& node, T& number, const std::string& expected) {
    if (const auto found = NumberOf<T>(node.Value())) {
        number = *found;
    } else {
        number = static_cast<T>(ReadName(node, expected));
    }
}

}  // namespace

Node Node::Member(const std::string& name) const {
    return {value.at(name), this, name};
}

Node Node::Element(std::size_t index) const {
    return {value.at(index), this, index};
}

bool Node::IsObject() const {
    return value.is_object();
}

bool Node::IsList() const {
    return value.is_array();
}

std::size_t Node::Size() const {
    return value.size();
}

bool Node::HasMember(const std::string& name) const {
    return value.contains(name);
}

std::vector<std::string> Node::MemberNames() const {
    std::vector<std::string> names;
    names.reserve(value.size());
    for (const auto& item : value.items()) {
        names.push_back(item.key());
    }
    return names;
}

const std::string* Node::Text() const {
    return value.get_ptr<const std::string*>();
}

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
    if (!IsObject()) {
        Expected("an object");
    }
}

void Node::MustBeList() const {
    if (!IsList()) {
        Expected("a list");
    }
}

std::int64_t ReadName(const Node& node, const std::string& otherwise) {
    const std::string* const text = node.Text();
    const auto value = text == nullptr ? std::nullopt : ValueOf(*text, NamesAt(node.Path()));
    if (!value) {
        ExpectedNumber(node, otherwise);
    }
    return *value;
}

void ExpectedNumber(const Node& node, const std::string& otherwise) {
    const std::vector<std::string> known = AllNames(NamesAt(node.Path()));
    if (known.empty()) {
        node.Expected(otherwise);
    }
    const std::string expected = Listed(known) + " or " + otherwise;
    const std::string* const text = node.Text();
    if (text == nullptr) {
        node.Expected(expected);
    }
    node.Expected(expected, Shown(*text) + Suggestion(NearestName(*text, known)));
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

std::vector<std::byte> ReadBytes(const Node& node) {
    constexpr const char* kExpected = "a text of pairs of hexadecimal digits";
    const std::string* const digits = node.Text();
    if (digits == nullptr) {
        node.Expected(kExpected);
    }
    if (digits->size() % 2 != 0) {
        node.Expected(kExpected, std::to_string(digits->size()) + " characters");
    }
    std::vector<std::byte> block;
    for (std::size_t index = 0; index < digits->size(); index += 2) {
        const char* const pair = digits->data() + index;
        std::uint8_t byte = 0;
        if (std::from_chars(pair, pair + 2, byte, 16).ptr != pair + 2) {
            node.Expected(kExpected, "other characters");
        }
        block.push_back(std::byte{byte});
    }
    return block;
}

namespace {

/// A text that is not UTF-8, or that fills its field without a terminator.
void ReadTextOfBytes(const Node& node, std::span<char> field) {
    Members members(node);
    const Node member = *members.Find("bytes");
    const std::vector<std::byte> bytes = ReadBytes(member);
    members.RejectOthers();
    if (bytes.size() > field.size()) {
        member.Expected("at most " + std::to_string(field.size()) + " bytes",
                        std::to_string(bytes.size()));
    }
    std::fill(field.begin(), field.end(), '\0');
    std::transform(bytes.begin(), bytes.end(), field.begin(),
                   [](std::byte byte) { return static_cast<char>(byte); });
}

}  // namespace

void ReadText(const Node& node, std::span<char> field) {
    const std::string expected = "a text of at most " + std::to_string(field.size() - 1) + " bytes";
    const std::string* const text = node.Text();
    if (node.IsObject() && node.HasMember("bytes")) {
        ReadTextOfBytes(node, field);
        return;
    }
    if (text == nullptr) {
        node.Expected(expected);
    }
    if (text->size() >= field.size()) {
        node.Expected(expected, "one of " + std::to_string(text->size()) + " bytes");
    }
    if (text->find('\0') != std::string::npos) {
        node.Expected(expected, "one with a NUL in it");
    }
    std::memcpy(field.data(), text->c_str(), text->size() + 1);
}

std::optional<Node> Members::Find(const std::string& name) {
    names.push_back(name);
    if (!object.HasMember(name)) {
        return std::nullopt;
    }
    return object.Member(name);
}

void Members::RejectOthers(const std::string& what) const {
    for (const std::string& name : object.MemberNames()) {
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            const Node member = object.Member(name);
            throw UnknownName(member.Path(), member.Complaint(what, "an unknown name"), names);
        }
    }
}

void Members::RejectOthers() const {
    RejectOthers("one of " + Listed(names));
}

}  // namespace binding
