#include "bindings/document/document_time.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

namespace binding {

namespace {

constexpr double kLongest = 604'800;

/// The number in the digits of @p text from @p begin; 0 if there is none.
unsigned int NumberAt(std::string_view text, std::size_t begin, std::size_t digits) {
    unsigned int number = 0;
    (void)std::from_chars(text.data() + begin, text.data() + begin + digits, number);
    return number;
}

std::optional<DocumentTime> TimeIn(const std::string& text) {
    constexpr std::size_t kLength = std::string_view("2026-11-21T12:00:00.123Z").size();
    if (text.size() != kLength) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date{
        std::chrono::year(static_cast<int>(NumberAt(text, 0, 4))),
        std::chrono::month(NumberAt(text, 5, 2)), std::chrono::day(NumberAt(text, 8, 2))};
    if (!date.ok()) {
        return std::nullopt;
    }
    const DocumentTime time =
        std::chrono::sys_days(date) + std::chrono::hours(NumberAt(text, 11, 2)) +
        std::chrono::minutes(NumberAt(text, 14, 2)) + std::chrono::seconds(NumberAt(text, 17, 2)) +
        std::chrono::milliseconds(NumberAt(text, 20, 3));
    // Finds everything that is not as TimeText writes it, such as other separators or hour 24.
    return TimeText(time) == text ? std::optional(time) : std::nullopt;
}

}  // namespace

std::chrono::milliseconds ReadSeconds(const Node& node, double least) {
    const double seconds = node.Value().is_number() ? node.Value().get<double>() : -1;
    if (!(seconds >= least && seconds <= kLongest)) {
        std::array<char, 16> number{};
        (void)std::snprintf(number.data(), number.size(), "%g", least);
        node.Expected(std::string("a number of seconds from ") + number.data() + " to 604800");
    }
    return std::chrono::milliseconds(std::llround(seconds * 1000));
}

DocumentTime ReadTime(const Node& node) {
    const std::string* const text = node.Text();
    const auto time = text == nullptr ? std::nullopt : TimeIn(*text);
    if (!time) {
        constexpr const char* kExpected = "a time such as 2026-11-21T12:00:00.123Z";
        text == nullptr ? node.Expected(kExpected) : node.Expected(kExpected, "another text");
    }
    return *time;
}

std::string TimeText(DocumentTime time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss clock(time - day);
    std::array<char, 64> text{};
    (void)std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                        static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                        static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                        static_cast<int>(clock.minutes().count()),
                        static_cast<int>(clock.seconds().count()),
                        static_cast<int>(clock.subseconds().count()));
    return text.data();
}

}  // namespace binding
