#include "tools/time_argument.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "tools/tool.h"

double TakeNumber(std::string_view& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

std::chrono::milliseconds TimeIn(const Arguments& arguments, const std::string& name,
                                 std::chrono::milliseconds least) {
    const std::string& text = arguments.Value(name);
    std::string_view unit = text;
    double milliseconds = TakeNumber(unit) * 1000;
    if (unit == "m") {
        milliseconds *= 60;
    } else if (unit == "ms") {
        milliseconds /= 1000;
    }
    constexpr double kWeek = 604'800'000;
    const bool isKnown = unit.empty() || unit == "s" || unit == "ms" || unit == "m";
    // The condition is negated so that it also refuses what is not a number.
    if (!isKnown ||
        !(milliseconds >= static_cast<double>(least.count()) && milliseconds <= kWeek)) {
        throw UsageError(name + ": '" + text + "' is not a time from " +
                         std::to_string(least.count()) + "ms to 604800s");
    }
    return std::chrono::milliseconds(std::llround(milliseconds));
}

Json SecondsOf(std::chrono::milliseconds time) {
    return time.count() % 1000 == 0 ? Json(time.count() / 1000)
                                    : Json(static_cast<double>(time.count()) / 1000);
}
