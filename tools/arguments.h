#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// An argument that a command takes by its position.
struct Parameter {
    const char* name = nullptr;
    const char* description = nullptr;

    /// Bounds of a number; a parameter without them is a text.
    struct Range {
        std::int64_t first;
        std::int64_t last;
    };
    std::optional<Range> range = std::nullopt;
    /// An optional parameter may be left out, but an empty text is refused: it usually comes from a
    /// script whose variable is not set, and must not count as left out.
    bool isOptional = false;
};

/// An argument that a command takes by its name.
struct Option {
    const char* name = nullptr;  ///< such as "--idle"
    const char* description = nullptr;
    /// Name of its value in the help, such as "SECONDS"; null for a switch, which has none.
    const char* value = nullptr;
    const char* preset = "";  ///< the value if the option is not given
    /// An option with an optional value may be given without one, and then has an empty value. An
    /// empty text is refused as in an optional parameter.
    bool isValueOptional = false;
    std::optional<Parameter::Range> range = std::nullopt;
    /// Names of parameters and of earlier options that cannot be given together with this one.
    std::vector<const char*> excludes = {};
};

/// @p text as a decimal number; nullopt when it is not one or is out of @p range.
std::optional<std::int64_t> NumberIn(const std::string& text, Parameter::Range range);

/// One argument as the caller has given it.
struct Argument {
    std::string name;
    std::string text = {};  ///< if it is not given, empty or the preset
    bool isGiven = false;
};

/// What the caller has given for a command, checked against what the command takes: its parameters
/// in their order, then its options.
struct Arguments {
    std::vector<Argument> all;

    const char* Text(std::size_t index) const { return all.at(index).text.c_str(); }
    std::int64_t Number(std::size_t index) const { return std::stoll(all.at(index).text); }

    // Arguments by name. A name that the command does not take throws std::logic_error.
    const std::string& Value(const std::string& name) const { return Named(name).text; }
    bool Given(const std::string& name) const { return Named(name).isGiven; }

  private:
    const Argument& Named(const std::string& name) const;
};
