#include "bindings/posix/json/json_text.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

namespace binding {

namespace {

using json = nlohmann::ordered_json;

std::size_t LineAt(const std::string& text, std::size_t offset) {
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(offset, text.size()));
    return 1 + static_cast<std::size_t>(std::count(text.begin(), end, '\n'));
}

std::size_t ColumnAt(const std::string& text, std::size_t offset) {
    const std::size_t newline = offset == 0 ? std::string::npos : text.rfind('\n', offset - 1);
    return newline == std::string::npos ? offset + 1 : offset - newline;
}

/// Feeds the parser and counts the bytes that the parser has read.
class CountingIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    CountingIterator(const char* newCurrent, std::size_t* newTaken)
        : current(newCurrent), taken(newTaken) {}

    reference operator*() const { return *current; }
    CountingIterator& operator++() {
        ++current;
        ++*taken;
        return *this;
    }
    bool operator==(const CountingIterator& other) const { return current == other.current; }
    bool operator!=(const CountingIterator& other) const { return current != other.current; }

  private:
    const char* current;
    std::size_t* taken;
};

/// Parses a document without building it, and tells derived classes the path and the byte offsets
/// of each value.
class Walker : public nlohmann::json_sax<json> {
  public:
    explicit Walker(const std::string& newText) : text(newText) {}

    void Walk() {
        json::sax_parse(CountingIterator(text.data(), &taken),
                        CountingIterator(text.data() + text.size(), &taken), this);
    }

    bool null() override { return Scalar(nullptr); }
    bool boolean(bool value) override { return Scalar(value); }
    bool number_integer(number_integer_t value) override { return Scalar(value); }
    bool number_unsigned(number_unsigned_t value) override { return Scalar(value); }
    bool number_float(number_float_t value, const string_t& /*digits*/) override {
        return Scalar(value);
    }
    bool string(string_t& value) override { return Scalar(std::move(value)); }
    bool binary(binary_t& /*value*/) override { return false; }

    bool start_object(std::size_t /*elements*/) override { return Open(json::object()); }
    bool start_array(std::size_t /*elements*/) override { return Open(json::array()); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& name) override {
        Level& level = levels.back();
        level.name = name;
        level.nameEnd = taken;
        return Named(level.names.insert(name).second);
    }

    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const json::exception& error) override {
        // The library's own prefix repeats the position, which our error has already.
        std::string what = error.what();
        what.erase(0, what.find("] ") + 2);
        if (what.starts_with("parse error at")) {
            what.erase(0, what.find(": ") + 2);
        }
        const std::size_t offset = taken == 0 ? 0 : taken - 1;
        throw SyntaxError(
            std::to_string(LineAt(text, offset)) + ":" + std::to_string(ColumnAt(text, offset)),
            what);
    }

  protected:
    /// Path of the value that begins or ends, or of the member that has just been named.
    KeyPath CurrentPath() const {
        KeyPath path;
        for (const Level& level : levels) {
            if (level.isList) {
                path.emplace_back(level.index);
            } else {
                path.emplace_back(level.name);
            }
        }
        return path;
    }

    std::size_t Depth() const { return levels.size(); }

    /// Name of the member that begins.
    const std::string& CurrentName() const { return levels.back().name; }

    /// Whether the current value is at @p path. Depths are compared first, because building the
    /// current path costs more.
    bool IsAt(const KeyPath& path) const {
        return levels.size() == path.size() && CurrentPath() == path;
    }

    std::size_t CurrentLine() const {
        const bool isMember = !levels.empty() && !levels.back().isList;
        return LineAt(text, isMember ? levels.back().nameEnd : taken - 1);
    }

    std::size_t CurrentBegin() const {
        return levels.empty() ? taken - 1
                              : text.find_first_not_of(" \t\r\n:", levels.back().nameEnd);
    }

    /// Called for the name of a member. @p first says whether the name is new in its object.
    virtual bool Named(bool first) {
        static_cast<void>(first);
        return true;
    }

    /// Called when the current value begins. An object or a list is still empty in @p value.
    virtual bool Begins(json&& value) {
        static_cast<void>(value);
        return true;
    }

    /// Called when the current value ends before the byte at offset @p end.
    virtual bool Ends(std::size_t end) {
        static_cast<void>(end);
        return true;
    }

  private:
    struct Level {
        bool isList = false;
        std::size_t index = 0;
        std::string name;
        std::size_t nameEnd = 0;
        std::set<std::string> names;
    };

    /// The parser finds the end of a number only by reading the byte after it.
    bool Scalar(json value) {
        const std::size_t end = taken - (value.is_number() ? 1 : 0);
        return Begins(std::move(value)) && Ends(end) && Advance();
    }

    bool Open(json value) {
        const bool isList = value.is_array();
        if (!Begins(std::move(value))) {
            return false;
        }
        levels.emplace_back().isList = isList;
        return true;
    }

    bool Close() {
        levels.pop_back();
        return Ends(taken) && Advance();
    }

    bool Advance() {
        if (!levels.empty()) {
            ++levels.back().index;
        }
        return true;
    }

    const std::string& text;
    std::size_t taken = 0;
    std::vector<Level> levels;
};

/// Builds the document while it is being parsed.
class StrictParser : public Walker {
  public:
    using Walker::Walker;

    json Take() { return std::move(document); }

  protected:
    bool Begins(json&& value) override {
        constexpr std::size_t kDeepest = 64;
        if (Depth() > kDeepest) {
            throw SyntaxError(std::to_string(CurrentLine()),
                              "expected at most 64 levels, found more");
        }
        json& stored = Store(std::move(value));
        if (stored.is_structured()) {
            open.push_back(&stored);
        }
        return true;
    }

    bool Ends(std::size_t /*end*/) override {
        open.resize(Depth());
        return true;
    }

    bool Named(bool first) override {
        if (!first) {
            throw SyntaxError(std::to_string(CurrentLine()),
                              PathText(CurrentPath()) + ": expected once, found twice");
        }
        return true;
    }

  private:
    json& Store(json&& value) {
        if (open.empty()) {
            return document = std::move(value);
        }
        json& parent = *open.back();
        if (parent.is_array()) {
            return parent.emplace_back(std::move(value));
        }
        // Inserting through the object would search for the name, which is known to be new.
        std::vector<json::object_t::value_type>& members = parent.get_ref<json::object_t&>();
        return members.emplace_back(CurrentName(), std::move(value)).second;
    }

    json document;
    /// The objects and lists that have begun and not ended. Only the last one grows, so that the
    /// pointers to the others stay valid.
    std::vector<json*> open;
};

class Finder : public Walker {
  public:
    Finder(const std::string& newText, const KeyPath& newWanted)
        : Walker(newText), wanted(newWanted) {}

    const std::optional<Place>& Found() const { return found; }

  protected:
    bool Begins(json&& /*value*/) override {
        if (!found && IsAt(wanted)) {
            found = {.line = CurrentLine(), .begin = CurrentBegin(), .end = 0};
        }
        return true;
    }

    bool Ends(std::size_t end) override {
        if (found && IsAt(wanted)) {
            found->end = end;
            return false;
        }
        return true;
    }

  private:
    const KeyPath& wanted;
    std::optional<Place> found;
};

}  // namespace

std::string PathText(const KeyPath& path) {
    std::string text;
    for (const auto& step : path) {
        if (const auto* index = std::get_if<std::size_t>(&step)) {
            text += "[" + std::to_string(*index) + "]";
        } else {
            text += (text.empty() ? "" : ".") + std::get<std::string>(step);
        }
    }
    return text;
}

json ParseStrictly(const std::string& text) {
    StrictParser parser(text);
    parser.Walk();
    // The parser takes a NUL for the end of the text, but a file that a crash has damaged may go on
    // after it.
    if (const std::size_t nul = text.find('\0'); nul != std::string::npos) {
        throw SyntaxError(
            std::to_string(LineAt(text, nul)) + ":" + std::to_string(ColumnAt(text, nul)),
            "expected the end of the document, found a NUL");
    }
    return parser.Take();
}

std::optional<Place> FindValue(const std::string& text, const KeyPath& path) {
    Finder finder(text, path);
    finder.Walk();
    return finder.Found();
}

std::string WithMember(const std::string& text, const KeyPath& object, const std::string& name,
                       const std::string& value) {
    KeyPath member = object;
    member.emplace_back(name);
    std::string result = text;
    if (const auto place = FindValue(text, member)) {
        return result.replace(place->begin, place->end - place->begin, value);
    }
    const auto place = FindValue(text, object);
    if (!place) {
        KeyPath parent = object;
        parent.pop_back();
        return WithMember(text, parent, std::get<std::string>(object.back()),
                          "{" + json(name).dump() + ": " + value + "}");
    }
    const std::size_t begin = place->begin + 1;
    const std::size_t next = text.find_first_not_of(" \t\r\n", begin);
    const std::string indentation = text.substr(begin, next - begin);
    const std::string separator = text[next] == '}' ? "" : ",";
    return result.insert(begin, indentation + json(name).dump() + ": " + value + separator);
}

}  // namespace binding
