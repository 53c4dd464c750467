// What is wrong with a document, and where.
#pragma once

#include <cstddef>
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

/// The document is no JSON, or names something twice.
class SyntaxError : public std::runtime_error {
  public:
    /// @p newPlace is "line" or "line:column".
    SyntaxError(std::string newPlace, const std::string& what)
        : std::runtime_error(what), place(std::move(newPlace)) {}

    const std::string& Place() const { return place; }

  private:
    std::string place;
};

/// A value is not what it must be.
class ValueError : public std::runtime_error {
  public:
    ValueError(KeyPath newPath, const std::string& what)
        : std::runtime_error(what), path(std::move(newPath)) {}

    const KeyPath& Path() const { return path; }

  private:
    KeyPath path;
};

/// A member's name is none of those that its object may have.
class UnknownName : public ValueError {
  public:
    UnknownName(KeyPath newPath, const std::string& what, std::vector<std::string> newKnown)
        : ValueError(std::move(newPath), what), known(std::move(newKnown)) {}

    /// The names that the object may have.
    const std::vector<std::string>& Known() const { return known; }

  private:
    std::vector<std::string> known;
};

}  // namespace binding
