// Calls that deliver a result of fixed size through each of their pointers.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "conformance/field.h"
#include "conformance/probe.h"

namespace conformance {

/// One result of a call.
struct Result {
    std::size_t size = 0;
    FieldsOfBytes fields;
};

struct Query {
    std::string call;       ///< as declared, such as "sys_getSIMStatus"
    std::string arguments;  ///< the input arguments, as text
    int success = 0;
    std::vector<Result> results;
    /// Makes the call with a pointer for each result.
    std::function<int(std::span<void* const>)> make;
};

template <typename Record>
Result ResultOf(const char* name = nullptr, std::optional<Bounds> bounds = std::nullopt) {
    return {sizeof(Record), [name, bounds](std::span<const std::byte> bytes) {
                Fields fields = FieldsInBytes<Record>(bytes);
                if (name != nullptr) {
                    fields.front().name = name;
                }
                if (bounds) {
                    fields.front().bounds = bounds;
                }
                return fields;
            }};
}

/// A call whose only parameter is the pointer to its result.
template <typename Record>
Query QueryOf(const std::string& call, int success, int (*function)(Record*),
              std::optional<Bounds> bounds = std::nullopt) {
    return {call, "", success, {ResultOf<Record>(nullptr, bounds)}, [function](auto results) {
                return function(static_cast<Record*>(results[0]));
            }};
}

/// A call whose parameters are a name and the pointer to its result.
template <typename Record>
Query NamedQueryOf(const std::string& call, int success, int (*function)(const char*, Record*),
                   const std::string& name) {
    return {call, Quoted(name), success, {ResultOf<Record>()}, [function, name](auto results) {
                return function(name.c_str(), static_cast<Record*>(results[0]));
            }};
}

/// Makes the call twice, with results that were filled with different bytes, and checks the answers
/// against the declaration. Keeps the call for the tests with threads and signals.
void Examine(Probe& probe, const Query& query);

}  // namespace conformance
