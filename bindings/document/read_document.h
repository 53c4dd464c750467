// Reading JSON files that people write.
#pragma once

#include <stdexcept>
#include <string>

#include "bindings/document/document_error.h"
#include "bindings/posix/json/json_text.h"

namespace binding {

/// What @p compile makes of the parsed document @p text. Throws std::runtime_error, whose text
/// begins with @p file and the line, for a SyntaxError or a ValueError.
template <typename Compile>
auto ReadDocument(const std::string& file, const std::string& text, Compile compile) {
    try {
        return compile(ParseStrictly(text));
    } catch (const SyntaxError& error) {
        throw std::runtime_error(file + ":" + error.Place() + ": " + error.what());
    } catch (const ValueError& error) {
        const auto place = FindValue(text, error.Path());
        throw std::runtime_error(file + ":" + std::to_string(place ? place->line : 1) + ": " +
                                 error.what());
    }
}

}  // namespace binding
