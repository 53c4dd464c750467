#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

/// An argument that a command wants.
struct Parameter {
    const char* name = nullptr;
    const char* description = nullptr;

    /// Bounds of a number; a parameter without them is a text.
    struct Range {
        int first;
        int last;
    };
    std::optional<Range> range = std::nullopt;
};

/// The decimal number that @p text is; none when it is something else or out of @p range.
std::optional<int> NumberIn(const std::string& text, Parameter::Range range);

/// What the caller of a command has given: one text for each of its parameters, already checked
/// against them, and the command's option.
struct Arguments {
    std::vector<std::string> texts;
    bool option = false;

    const char* Text(std::size_t index) const { return texts.at(index).c_str(); }
    int Number(std::size_t index) const { return std::stoi(texts.at(index)); }
};
