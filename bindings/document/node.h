// Strict reading of the values of a parsed document: anything unexpected throws a ValueError that
// says where it is, what was expected and what was found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "bindings/document/document_error.h"

namespace binding {

class FaultCollector;

/// A value of a document together with its path from the root. It must not outlive its parent.
class Node {
  public:
    /// Makes the node of the root. @p newFaults gets the faults of the document's calls; it may be
    /// null for a document without calls.
    explicit Node(const nlohmann::ordered_json& newValue, FaultCollector* newFaults = nullptr)
        : value(newValue), faults(newFaults) {}

    const nlohmann::ordered_json& Value() const { return value; }
    KeyPath Path() const;
    FaultCollector* Faults() const { return faults; }

    /// Whether `{"error": N}` may stand in place of the value.
    void AllowFailure() { mayFail = true; }

    /// Throws a ValueError that says that the value is not @p expected.
    [[noreturn]] void Expected(const std::string& expected) const;
    [[noreturn]] void Expected(const std::string& expected, const std::string& found) const;

    /// Member @p name of an object, element @p index of a list.
    Node Member(const std::string& name) const;
    Node Element(std::size_t index) const;

    bool IsObject() const;
    bool IsList() const;
    /// How many members or elements there are.
    std::size_t Size() const;
    bool HasMember(const std::string& name) const;
    /// The names of the members of an object, in their order.
    std::vector<std::string> MemberNames() const;
    /// The text, or null when the value is not a text.
    const std::string* Text() const;

    void MustBeObject() const;
    void MustBeList() const;

  private:
    friend class Members;

    Node(const nlohmann::ordered_json& newValue, const Node* newParent,
         std::variant<std::string, std::size_t> newStep)
        : value(newValue), faults(newParent->faults), parent(newParent), step(std::move(newStep)) {}

    std::string Complaint(const std::string& expected, const std::string& found) const;

    const nlohmann::ordered_json& value;
    FaultCollector* faults;
    const Node* parent = nullptr;
    std::variant<std::string, std::size_t> step;
    bool mayFail = false;
};

/// The number @p value if it is an integer that fits into T; nothing otherwise. T is an integer
/// type of 8 (unsigned), 32 or 64 bits.
template <typename T>
std::optional<T> NumberOf(const nlohmann::ordered_json& value);

/// The number that the name @p node stands for. Throws ValueError unless it is one of the names
/// that numbers in its place have; @p otherwise says what else may be there.
std::int64_t ReadName(const Node& node, const std::string& otherwise);

/// Throws a ValueError that says that @p node is neither a name that it may be nor @p otherwise.
[[noreturn]] void ExpectedNumber(const Node& node, const std::string& otherwise);

// Each number may also be a name if its values have names.
void Read(const Node& node, std::uint8_t& number);
void Read(const Node& node, std::int32_t& number);
void Read(const Node& node, std::uint32_t& number);
void Read(const Node& node, std::uint64_t& number);
void Read(const Node& node, bool& value);

/// Pairs of hexadecimal digits.
std::vector<std::byte> ReadBytes(const Node& node);

/// Fills @p field, which must have room for the text and its terminator. {"bytes": digits} stands
/// for a text that is not UTF-8; it may fill the field without a terminator.
void ReadText(const Node& node, std::span<char> field);

template <std::size_t Size>
void Read(const Node& node, char (&field)[Size]) {
    ReadText(node, field);
}

/// The members of an object. It remembers which names were asked for, so that RejectOthers can find
/// unknown members.
class Members {
  public:
    explicit Members(const Node& newObject) : object(newObject) { object.MustBeObject(); }

    /// The member @p name, if the object has one.
    std::optional<Node> Find(const std::string& name);

    /// Reads the member @p name; without one, @p out stays as it is.
    template <typename T>
    Members& Field(const std::string& name, T& out) {
        if (const auto member = Find(name)) {
            Read(*member, out);
        }
        return *this;
    }

    /// Throws UnknownName if there is a member whose name was not asked for. @p what describes in
    /// the message what a name must be.
    void RejectOthers(const std::string& what) const;

    /// The same; the message lists the names that were asked for.
    void RejectOthers() const;

  private:
    const Node& object;
    std::vector<std::string> names;
};

}  // namespace binding
