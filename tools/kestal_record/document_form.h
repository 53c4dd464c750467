// Answers of the platform in the form that a device document has.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <span>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "bindings/posix/files/file_io.h"
#include "tools/json_output.h"
#include "tools/kestal_record/text_place.h"
#include "tools/list_reading.h"

/// The codes that calls of one part of the platform return.
struct Codes {
    int success;
    binding::Enumeration platform;
    binding::Enumeration binding;  ///< of the binding itself
    int bindingBase;               ///< what is added to these
};

/// {"error": N} for a call that has returned @p code.
Json FailureOf(const Codes& codes, int code);

/// A text in a field that has room for @p room bytes. It stays as it is, and apart from names of
/// numbers, until Finished makes a value of a document of it.
Json RawText(const std::string& text, std::size_t room);

/// @p recorded with all raw texts as values of a document, after @p change has changed them. Texts
/// that are not UTF-8 or have no terminator in their field become {"bytes": digits}.
using TextChange = std::function<std::string(const std::string&)>;
Json Finished(const Json& recorded, const TextChange& change);

/// The same with a change that depends on where a text is, and on whether it is a block of bytes.
using PlacedTextChange = std::function<std::string(const std::vector<std::string>& path,
                                                   const std::string& text, TextLayout layout)>;
Json Finished(const Json& recorded, const PlacedTextChange& change);

/// Calls @p visit(path, text) for each raw text and each block of bytes.
using TextVisit =
    std::function<void(const std::vector<std::string>& path, const std::string& text)>;
void VisitTexts(const Json& recorded, const TextVisit& visit);

/// @p value, or its name if it has one.
Json NumberOrName(std::int64_t value, binding::Enumeration names);

/// @p described, in which each value with its name becomes the one or the other.
Json WithoutNames(const Json& described);

/// An object of the answers of @p ask(name) to each of @p names; one failure for all names if all
/// fail alike.
template <typename Name, typename Ask>
Json AnswersByName(const std::vector<Name>& names, Ask ask) {
    Json answers = Json::object();
    for (const Name& name : names) {
        if constexpr (std::is_integral_v<Name>) {
            answers[std::to_string(name)] = ask(name);
        } else {
            answers[name] = ask(name);
        }
    }
    const Json& first = answers.front();
    const bool failAlike =
        first.is_object() && first.contains("error") &&
        std::all_of(answers.begin(), answers.end(), [&](const Json& one) { return one == first; });
    return failAlike ? first : answers;
}

/// The records of a list, described by @p describe(records), or the failure to read it.
template <typename Record, typename Count, typename Read, typename Describe>
Json ListAnswer(const std::string& call, const Codes& codes, int bufferNeeded, Read read,
                Describe describe) {
    // More than any device has, or of bytes, than a document can hold; more is a mistake, and may
    // not fit into memory.
    constexpr bool kIsBlock = sizeof(Record) == 1;
    constexpr Count kMost = kIsBlock ? Count{binding::kLargestFile} : Count{1'000'000};
    const auto readSome = [&](Record* buffer, Count* count) {
        const int code = read(buffer, count);
        if (*count > kMost) {
            throw std::runtime_error(call + " says that it has " + std::to_string(*count) +
                                     (kIsBlock ? " bytes" : " records"));
        }
        return code;
    };
    try {
        return describe(ReadList<Record, Count>(call, codes.success, bufferNeeded, readSome));
    } catch (const CallFailed& failure) {
        return FailureOf(codes, failure.Code());
    }
}
