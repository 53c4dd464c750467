#include "bindings/simulator/edit/device_path.h"

#include <utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string_view>

#include "bindings/document/device_reader.h"
#include "bindings/names/nearest_name.h"
#include "bindings/simulator/edit/device_edit.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

constexpr std::array<std::string_view, 4> kSections = {"title", "sys", "webui", "msgbus"};

/// Splits a path into steps. It follows the values in the document, because these decide where a
/// name with dots ends.
class PathParser {
  public:
    PathParser(const std::string& newText, const json& document)
        : text(newText), rest(newText), value(&document) {}

    KeyPath Parse() {
        TakeName();
        while (!rest.empty()) {
            if (rest.front() == '[') {
                TakePosition();
            } else if (rest.front() == '.') {
                rest.remove_prefix(1);
                TakeName();
            } else {
                Fail();
            }
        }
        return path;
    }

  private:
    [[noreturn]] void Fail() const {
        throw std::runtime_error("'" + text + "' is not a path, such as " +
                                 "sys.getBatteryStatus.chargePercent or " +
                                 "sys.getConnectedDeviceList[0]");
    }

    void TakeName() {
        const bool isChannel = path.size() == 1 && path.front() == KeyPath::value_type("msgbus");
        const std::size_t end = rest.find_first_of(isChannel ? "[" : ".[");
        std::string_view name = rest.substr(0, end);
        if (value != nullptr && value->is_object()) {
            std::size_t longest = 0;
            for (const auto& item : value->items()) {
                if (Begins(item.key()) && item.key().size() > longest) {
                    longest = item.key().size();
                    name = rest.substr(0, longest);
                }
            }
        }
        if (name.empty()) {
            Fail();
        }
        rest.remove_prefix(name.size());
        Step(std::string(name));
    }

    /// Whether the rest of the path begins with the whole of @p name.
    bool Begins(const std::string& name) const {
        return !name.empty() && rest.starts_with(name) &&
               (rest.size() == name.size() || rest[name.size()] == '.' || rest[name.size()] == '[');
    }

    void TakePosition() {
        std::size_t position = 0;
        const char* const last = rest.data() + rest.size();
        const auto [end, error] = std::from_chars(rest.data() + 1, last, position);
        if (error != std::errc() || end == last || *end != ']') {
            Fail();
        }
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()) + 1);
        path.emplace_back(position);
        value = value == nullptr ? nullptr : FindAt(*value, {position});
    }

    void Step(const std::string& name) {
        path.emplace_back(name);
        value = value == nullptr ? nullptr : FindAt(*value, {name});
    }

    const std::string& text;
    std::string_view rest;
    const json* value;
    KeyPath path;
};

/// The section, sys or webui, that has the call with which @p path begins.
std::string SectionOf(const KeyPath& path, const json& document) {
    const std::string& call = std::get<std::string>(path.front());
    std::vector<std::string> known;
    for (const char* const section : {"sys", "webui"}) {
        try {
            MustBeKnown(document, {section, call});
            return section;
        } catch (const UnknownName& error) {
            known.insert(known.end(), error.Known().begin(), error.Known().end());
        }
    }
    known.insert(known.end(), kSections.begin(), kSections.end());
    throw std::runtime_error("there is no call '" + call + "'" +
                             Suggestion(NearestName(call, known)));
}

void AddPaths(const json& value, KeyPath& path, std::vector<std::string>& paths) {
    if (!path.empty()) {
        paths.push_back(PathText(path));
    }
    std::size_t position = 0;
    if (value.is_structured()) {
        for (const auto& item : value.items()) {
            if (value.is_object()) {
                path.emplace_back(item.key());
            } else {
                path.emplace_back(position++);
            }
            AddPaths(item.value(), path, paths);
            path.pop_back();
        }
    }
}

}  // namespace

KeyPath ResolvePath(const std::string& text, const json& document) {
    if (!utf8::is_valid(text.begin(), text.end())) {
        throw std::runtime_error("a path is written in UTF-8");
    }
    KeyPath path = PathParser(text, document).Parse();
    const std::string& first = std::get<std::string>(path.front());
    if (std::find(kSections.begin(), kSections.end(), first) != kSections.end()) {
        return path;
    }
    const std::string whole = SectionOf(path, document) + "." + text;
    return PathParser(whole, document).Parse();
}

void MustBeKnown(const json& document, const KeyPath& path) {
    json probe = document;
    SetValue(probe, path, {{"error", 1}});
    try {
        CompileDevice(probe);
    } catch (const UnknownName& error) {
        // With a longer path, only the probe itself is unknown, and the name before it is right.
        if (error.Path().size() <= path.size()) {
            throw;
        }
    } catch (const ValueError&) {
        // The name is right; the reader only expects another value than the probe.
        return;
    }
}

const json* FindAt(const json& document, const KeyPath& path) {
    const json* value = &document;
    for (const auto& step : path) {
        if (const auto* const name = std::get_if<std::string>(&step)) {
            if (!value->is_object() || !value->contains(*name)) {
                return nullptr;
            }
            value = &value->at(*name);
        } else {
            const std::size_t position = std::get<std::size_t>(step);
            if (!value->is_array() || position >= value->size()) {
                return nullptr;
            }
            value = &value->at(position);
        }
    }
    return value;
}

std::vector<std::string> AllPaths(const json& document) {
    std::vector<std::string> paths;
    KeyPath path;
    AddPaths(document, path, paths);
    return paths;
}

}  // namespace binding
