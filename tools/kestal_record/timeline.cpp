#include "tools/kestal_record/timeline.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/json/formatted.h"
#include "bindings/posix/files/file_io.h"
#include "tools/kestal_record/document_form.h"
#include "tools/time_argument.h"

namespace {

using Path = std::vector<std::string>;

/// Scenarios have at most 100000 changes; some are left for the event at the beginning.
constexpr std::size_t kMostChanges = 90'000;

/// Some room is left for replacements of identities that are longer than what they replace.
constexpr std::size_t kMostBytes = binding::kLargestFile / 8 * 7;

/// Whether a scenario can name the members of @p object one by one.
bool HasPlainNames(const Json& object) {
    return std::all_of(object.items().begin(), object.items().end(), [](const auto& item) {
        return !item.key().empty() && item.key().find_first_of(".[]") == std::string::npos;
    });
}

/// Whether @p value is a value of its own rather than an object of values.
bool IsWhole(const Json& value) {
    return !value.is_object() || value.contains("error") || value.contains("bytes") ||
           value.contains("text");
}

bool HaveSameNames(const Json& before, const Json& after) {
    return before.size() == after.size() &&
           std::equal(before.items().begin(), before.items().end(), after.items().begin(),
                      [](const auto& one, const auto& other) { return one.key() == other.key(); });
}

void Compare(const Json& before, const Json& after, Path& path, std::vector<ValueChange>& changes) {
    if (before == after) {
        return;
    }
    // The document itself, its parts and the channels have the same names all the time, or more.
    constexpr std::size_t kCall = 2;
    const bool isPart = path.size() < kCall;
    if (!isPart && (IsWhole(before) || IsWhole(after) || !HaveSameNames(before, after) ||
                    !HasPlainNames(after))) {
        changes.push_back({path, after});
        return;
    }
    for (const auto& item : after.items()) {
        path.push_back(item.key());
        if (before.contains(item.key())) {
            Compare(before.at(item.key()), item.value(), path, changes);
        } else {
            changes.push_back({path, item.value()});
        }
        path.pop_back();
    }
}

std::string PathText(const Path& path) {
    std::string text;
    for (const std::string& step : path) {
        text += (text.empty() ? "" : ".") + step;
    }
    return text;
}

/// Whether @p path is @p whole or leads to a part of it.
bool IsWithin(const Path& path, const Path& whole) {
    return path.size() >= whole.size() && std::equal(whole.begin(), whole.end(), path.begin());
}

const Json* Find(const Json& document, const Path& path) {
    const Json* value = &document;
    for (const std::string& step : path) {
        if (!value->is_object() || !value->contains(step)) {
            return nullptr;
        }
        value = &value->at(step);
    }
    return value;
}

/// What the device answers from now on, as members of an event.
Json MembersOf(const std::vector<ValueChange>& changes) {
    Json members = Json::object();
    for (const ValueChange& change : changes) {
        const std::string path = PathText(change.path);
        const Json& value = change.value;
        // A call without an answer works or fails: no value could be set.
        if (value.is_null()) {
            members["heal"].push_back(path);
        } else if (value.is_object() && value.contains("healed")) {
            members["fail"][path] = value.at("error");
        } else {
            members["set"][path] = value;
        }
    }
    return members;
}

/// What happens, for people: the calls that answer something else.
std::string Summary(const std::vector<ValueChange>& changes) {
    std::vector<std::string> calls;
    for (const ValueChange& change : changes) {
        const std::string call = change.path.size() > 1 ? change.path[1] : change.path.front();
        if (calls.empty() || calls.back() != call) {
            calls.push_back(call);
        }
    }
    return binding::Listed(calls);
}

Json EventOf(const Moment& moment) {
    Json event = {{"at", SecondsOf(moment.time)}, {"say", Summary(moment.changes)}};
    event.update(MembersOf(moment.changes));
    return event;
}

/// Bytes of a line, or several, with @p value in a scenario, where it is @p level levels deep.
std::size_t BytesOf(const Json& value, std::size_t level) {
    // Indentation, comma and end of line.
    const std::size_t around = binding::ColumnOfMember("", level) + 2;
    const auto same = [](const std::string& text) { return text; };
    return around + binding::Formatted(Finished(value, same), level, around).size();
}

}  // namespace

bool Timeline::Add(Time time, Json device) {
    Moment moment{time, {}};
    Path path;
    Compare(latest, device, path, moment.changes);
    if (moment.changes.empty()) {
        return true;
    }
    constexpr std::size_t kEventLevel = 2;
    std::size_t added = BytesOf(EventOf(moment), kEventLevel);
    for (const ValueChange& change : moment.changes) {
        if (const Json* const value =
                changed.contains(change.path) ? nullptr : Find(first, change.path)) {
            added += BytesOf(MembersOf({{change.path, *value}}), kEventLevel);
        }
    }
    if (changeCount + moment.changes.size() > kMostChanges || bytes + added > kMostBytes) {
        return false;
    }
    changeCount += moment.changes.size();
    bytes += added;
    for (const ValueChange& change : moment.changes) {
        changed.insert(change.path);
    }
    moments.push_back(std::move(moment));
    latest = std::move(device);
    return true;
}

/// Everything that changes later as it was at the beginning, so that the scenario can be repeated.
Json Timeline::Beginning() const {
    std::vector<ValueChange> values;
    for (const Path& path : changed) {
        // A whole stands before its parts.
        if (!values.empty() && IsWithin(path, values.back().path)) {
            continue;
        }
        if (const Json* const value = Find(first, path)) {
            values.push_back({path, *value});
        }
    }
    return MembersOf(values);
}

Json Timeline::Scenario(Time end) const {
    Json events = Json::array();
    Json beginning = {{"at", 0}, {"say", "The recording begins"}};
    beginning.update(Beginning());
    events.push_back(std::move(beginning));
    for (const Moment& moment : moments) {
        events.push_back(EventOf(moment));
    }
    const Time last = moments.empty() ? Time(0) : moments.back().time;
    return {{"duration", SecondsOf(std::max(end, last))}, {"events", std::move(events)}};
}
