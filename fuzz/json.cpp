// Trees and their JSON. The input has instructions to build a tree, one on each line; escapes in
// their values are replaced:
//
//     NAME=INSTRUCTION    NAME= only inside a hash
//
// h opens a hash and a an array, x closes it. sTEXT, iINTEGER, dREAL, u (undefined) and p (a
// pointer) add values. nTEXT and fTEXT add a text and then read it as an integer or as a real.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "framework/answer_tree.h"
#include "fuzz/answers.h"
#include "fuzz/target.h"

namespace {

using Json = nlohmann::json;

std::size_t CountDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

/// Whether the whole of @p text is a decimal number: there must be a digit before or after the
/// point, and after the letter of an exponent. Sets @p isInteger if it has neither point nor
/// exponent.
bool IsNumber(std::string_view text, bool& isInteger) {
    const auto skip = [&](std::string_view characters) {
        const bool there = !text.empty() && characters.find(text.front()) != std::string_view::npos;
        text.remove_prefix(there ? 1 : 0);
        return there;
    };
    const auto digits = [&] {
        const std::size_t count = CountDigits(text);
        text.remove_prefix(count);
        return count > 0;
    };
    (void)skip("+-");
    const bool whole = digits();
    isInteger = whole && text.empty();
    const bool point = skip(".");
    const bool fraction = point && digits();
    if (!whole && !fraction) {
        return false;
    }
    if (skip("eE")) {
        (void)skip("+-");
        return digits() && text.empty();
    }
    return text.empty() && (!point || fraction);
}

double RealOf(const std::string& text) {
    bool isInteger = false;
    return IsNumber(text, isInteger) ? std::strtod(text.c_str(), nullptr) : 0;
}

/// @p real as the tree writes it: with 12 digits.
Json RealAsWritten(double real) {
    if (!std::isfinite(real)) {
        return nullptr;
    }
    char digits[40];
    (void)std::snprintf(digits, sizeof(digits), "%.12G", real);
    return Json::parse(digits);
}

void RequireNumbers(const std::string& text) {
    bool isInteger = false;
    const bool isNumber = IsNumber(text, isInteger);
    const CTPP::CDT real(text);
    const double expected = RealOf(text);
    // An integer beyond 64 bits is clamped before it becomes a real.
    if (!isInteger || std::fabs(expected) < 1e15) {
        Require(real.GetFloat() == expected, "a number reads as such, anything else as 0", text);
    }
    const CTPP::CDT integer(text);
    const INT_64 value = integer.GetInt();
    if (isInteger) {
        const std::string_view digits = std::string_view(text).substr(text.front() == '+' ? 1 : 0);
        Require(value == Integer(digits), "an integer reads as such, clamped", text);
    } else if (isNumber && std::fabs(expected) < 1e15) {
        Require(value == static_cast<INT_64>(expected), "a real is truncated", text);
    } else if (!isNumber) {
        Require(value == 0, "a text that is not a number counts as 0", text);
    }
    Require(integer.GetString() == text && integer.Size() == text.size(),
            "a text stays what it is when it is read", text);
}

class Builder {
  public:
    void Take(std::string_view line) {
        Level& level = levels.back();
        std::string name;
        if (level.expected->is_object()) {
            name = Unescaped(TakeUntil(line, '='));
        }
        if (line.empty()) {
            return;
        }
        const char instruction = line.front();
        if (instruction == 'x') {
            if (levels.size() > 1) {
                levels.pop_back();
            }
            return;
        }
        const std::string text = Unescaped(line.substr(1));
        CTPP::CDT value;
        Json expected;
        if (!Make(instruction, text, value, expected)) {
            return;
        }
        CTPP::CDT* place = nullptr;
        Json* expectedPlace = nullptr;
        if (level.expected->is_object()) {
            place = &((*level.tree)[name] = value);
            expectedPlace = &((*level.expected)[name] = expected);
        } else {
            level.tree->PushBack(value);
            level.expected->push_back(expected);
            place = &level.tree->At(level.tree->Size() - 1);
            expectedPlace = &level.expected->back();
        }
        if (instruction == 'n') {
            (void)place->GetInt();
        } else if (instruction == 'f') {
            (void)place->GetFloat();
        } else if (instruction == 'h' || instruction == 'a') {
            levels.push_back({place, expectedPlace});
        }
    }

    const CTPP::CDT& Tree() const { return tree; }
    const Json& Expected() const { return expectedTree; }

  private:
    struct Level {
        CTPP::CDT* tree;
        Json* expected;
    };

    static bool Make(char instruction, const std::string& text, CTPP::CDT& value, Json& expected) {
        switch (instruction) {
            case 'h':
                value = CTPP::CDT(CTPP::CDT::HASH_VAL);
                expected = Json::object();
                return true;
            case 'a':
                value = CTPP::CDT(CTPP::CDT::ARRAY_VAL);
                expected = Json::array();
                return true;
            case 's':
                RequireNumbers(text);
                value = text;
                expected = text;
                return true;
            case 'i':
                value = INT_64{Integer(text)};
                expected = Integer(text);
                return true;
            case 'd': {
                const double real = std::strtod(text.c_str(), nullptr);
                value = real;
                expected = RealAsWritten(real);
                return true;
            }
            case 'n':
            case 'f':
                if (!std::isfinite(RealOf(text))) {
                    // Valid JSON, but the number is too large for the parser that this check uses.
                    return false;
                }
                value = text;
                // A text that was read as a number is written without quotes if JSON allows its
                // form.
                expected = text.find_first_not_of("0123456789+-.eE") == std::string::npos &&
                                   Json::accept(text)
                               ? Json::parse(text)
                               : Json(text);
                return true;
            case 'p':
                value = CTPP::CDT(static_cast<void*>(nullptr));
                return true;
            case 'u':
                return true;
            default:
                return false;
        }
    }

    CTPP::CDT tree = CTPP::CDT(CTPP::CDT::HASH_VAL);
    Json expectedTree = Json::object();
    std::vector<Level> levels = {{&tree, &expectedTree}};
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = InputText(data, size);
    Builder builder;
    for (const std::string_view line : LinesOf(input)) {
        builder.Take(line);
    }
    std::string json;
    CTPP::CDT2JSON(builder.Tree(), json);
    RequireJson(json);
    if (IsUtf8(json)) {
        Require(Json::parse(json) == builder.Expected(), "JSON says what the tree holds", json);
    }
    const CTPP::CDT copy = builder.Tree();
    std::string again;
    CTPP::CDT2JSON(copy, again);
    Require(again == json, "a copy is equal", again);
    return 0;
}
