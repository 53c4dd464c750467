// JSON as text: strict parsing, the place of a value, and changing one value while every other byte
// stays as it is.
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace binding {

/// The way to a value: names in objects, positions in lists.
using KeyPath = std::vector<std::variant<std::string, std::size_t>>;

/// The path as people write it: sys.getConnectedDeviceList[2].connectionKind
std::string PathText(const KeyPath& path);

/// The document is not JSON, or an object in it has two members of the same name.
class SyntaxError : public std::runtime_error {
  public:
    /// @p newPlace is "line" or "line:column".
    SyntaxError(std::string newPlace, const std::string& what)
        : std::runtime_error(what), place(std::move(newPlace)) {}

    const std::string& Place() const { return place; }

  private:
    std::string place;
};

/// Parses a document and keeps the order of members. Throws SyntaxError; also when an object has
/// two members of the same name, and when the document is nested so deeply that recursive
/// functions, such as a copy, could overflow the stack.
nlohmann::ordered_json ParseStrictly(const std::string& text);

/// Where a value stands in its text.
struct Place {
    std::size_t line;   ///< from 1: of its name, or of the value in a list
    std::size_t begin;  ///< offset of the value's first byte; only for members of objects
    std::size_t end;    ///< offset of the byte after its last one
};

/// Finds the value at @p path in a text that ParseStrictly accepts.
std::optional<Place> FindValue(const std::string& text, const KeyPath& path);

/// The text with the member @p name of the object at @p object set to @p value, which is JSON. A
/// missing member becomes the first one.
std::string WithMember(const std::string& text, const KeyPath& object, const std::string& name,
                       const std::string& value);

}  // namespace binding
