// What is wrong with a value of a document, and where.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bindings/posix/json/json_text.h"

namespace binding {

/// A value of the document is not what its place requires.
class ValueError : public std::runtime_error {
  public:
    ValueError(KeyPath newPath, const std::string& what)
        : std::runtime_error(what), path(std::move(newPath)) {}

    const KeyPath& Path() const { return path; }

  private:
    KeyPath path;
};

/// An object has a member with a name that it may not have.
class UnknownName : public ValueError {
  public:
    UnknownName(KeyPath newPath, const std::string& what, std::vector<std::string> newKnown)
        : ValueError(std::move(newPath), what), known(std::move(newKnown)) {}

    /// The names that the object may have.
    const std::vector<std::string>& Known() const { return known; }

  private:
    std::vector<std::string> known;
};

/// The text of @p error with the path of the closest known name added.
std::string WithSuggestion(const UnknownName& error);

}  // namespace binding
