#include "bindings/simulator/log_line.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace simulator {

namespace {

constexpr std::string_view kCut = "...[cut]";

bool IsControl(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

bool IsInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the buffer is filled as far as it is used
LogLine::LogLine(const char* programName) {
    using std::chrono::floor;
    const auto now = floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const auto today = floor<std::chrono::days>(now);
    const std::chrono::year_month_day date(today);
    const std::chrono::hh_mm_ss time(now - today);
    const int written = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ %.64s[%d] ",
        static_cast<int>(date.year()), static_cast<unsigned int>(date.month()),
        static_cast<unsigned int>(date.day()), static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
        static_cast<int>(time.subseconds().count()), programName, getpid());
    length = static_cast<std::size_t>(std::max(written, 0));
}

void LogLine::Append(const char* format, std::va_list arguments) {
    const std::size_t begin = length;
    // Leaves room for the mark and the line feed.
    const std::size_t room = text.size() - begin - kCut.size() - 1;
    const int wanted = std::vsnprintf(text.data() + begin, room, format, arguments);
    if (wanted < 0) {
        length += kCut.copy(text.data() + begin, kCut.size());
        return;
    }
    const bool isCut = static_cast<std::size_t>(wanted) >= room;
    length += isCut ? room - 1 : static_cast<std::size_t>(wanted);
    if (!isCut && length > begin && text.at(length - 1) == '\n') {
        --length;
    }
    std::replace_if(text.data() + begin, text.data() + length, IsControl, '?');
    if (isCut) {
        // Not in the middle of a character of several bytes.
        if (length > begin && static_cast<unsigned char>(text.at(length - 1)) >= 0x80U) {
            while (length > begin && IsInsideCharacter(text.at(length - 1))) {
                --length;
            }
            --length;
        }
        length += kCut.copy(text.data() + length, kCut.size());
    }
}

std::string_view LogLine::Finish() {
    text.at(length) = '\n';
    return {text.data(), length + 1};
}

}  // namespace simulator
