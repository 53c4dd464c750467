#include "bindings/posix/log/log_line.h"

#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace binding {

namespace {

constexpr std::string_view kCut = "...[cut]";

/// Room for the notes; the longest two of them have 41 bytes each.
constexpr std::size_t kNotes = 88;

/// A message ends at this offset at the latest, so that the mark of a cut, the notes and the line
/// feed have room.
constexpr std::size_t kEndOfMessage = 4096 - kCut.size() - kNotes - 1;

bool IsPlain(char byte) {
    return byte >= ' ' && byte < '\x7f';
}

bool IsInsideCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Whether a terminal or editor would obey @p character instead of showing it: control characters,
/// line separators, and characters that change the direction of the text around them.
bool IsObeyed(std::uint32_t character) {
    const auto isIn = [character](std::uint32_t first, std::uint32_t last) {
        return character >= first && character <= last;
    };
    return character < ' ' || isIn(0x7F, 0x9F) || character == 0x61C || isIn(0x200E, 0x200F) ||
           isIn(0x2028, 0x202E) || isIn(0x2066, 0x2069);
}

/// Replaces everything that must not appear in a log by '?', and returns the new end.
char* MakeHarmless(char* begin, char* end) {
    char* read = std::find_if_not(begin, end, IsPlain);
    char* written = read;
    while (read != end) {
        char* const validEnd = utf8::find_invalid(read, end);
        while (read != validEnd) {
            char* next = read;
            if (IsObeyed(utf8::unchecked::next(next))) {
                *written++ = '?';
            } else {
                written = std::copy(read, next, written);
            }
            read = next;
        }
        if (read != end) {
            *written++ = '?';
            ++read;
        }
    }
    return written;
}

/// Drops the last character of @p text unless it has one byte only, because it may be incomplete.
std::string_view WithoutLastCharacter(std::string_view text) {
    for (int bytes = 1; bytes < 4 && !text.empty() && IsInsideCharacter(text.back()); ++bytes) {
        text.remove_suffix(1);
    }
    if (!text.empty() && static_cast<unsigned char>(text.back()) >= 0xC0U) {
        text.remove_suffix(1);
    }
    return text;
}

}  // namespace

LogLine LogLine::ForDebugLog(const char* programName, std::optional<int> journalLevel) {
    using std::chrono::floor;
    const auto now = floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const auto today = floor<std::chrono::days>(now);
    const std::chrono::year_month_day date(today);
    const std::chrono::hh_mm_ss time(now - today);
    LogLine line;
    if (journalLevel) {
        line.Begin("<%d>", *journalLevel);
    }
    line.Begin("%04d-%02u-%02uT%02d:%02d:%02d.%03dZ %.64s[%d] ", static_cast<int>(date.year()),
               static_cast<unsigned int>(date.month()), static_cast<unsigned int>(date.day()),
               static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
               static_cast<int>(time.seconds().count()),
               static_cast<int>(time.subseconds().count()), programName, getpid());
    return line;
}

LogLine LogLine::ForSystemLog(const char* programName, int priority) {
    LogLine line;
    line.Begin("<%d>%.64s[%d]: ", priority, programName, getpid());
    return line;
}

void LogLine::Begin(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Append(format, arguments);
    va_end(arguments);
    head = length;
}

void LogLine::Append(const char* format, std::va_list arguments) {
    char* const begin = text.data() + length;
    const std::size_t room = kEndOfMessage - length;
    const int wanted = std::vsnprintf(begin, room, format, arguments);
    if (wanted < 0) {
        length += kCut.copy(begin, kCut.size());
        return;
    }
    const bool isCut = static_cast<std::size_t>(wanted) >= room;
    std::string_view added(begin, isCut ? room - 1 : static_cast<std::size_t>(wanted));
    if (isCut) {
        added = WithoutLastCharacter(added);
    } else if (added.ends_with('\n')) {
        added.remove_suffix(1);
    }
    length = static_cast<std::size_t>(MakeHarmless(begin, begin + added.size()) - text.data());
    if (isCut) {
        length += kCut.copy(text.data() + length, kCut.size());
    }
}

void LogLine::Append(std::string_view earlier) {
    length += earlier.copy(text.data() + length, kEndOfMessage - length);
}

void LogLine::Note(const char* format, ...) {
    // The last byte is reserved for the line feed.
    const std::size_t room = text.size() - length - 1;
    std::va_list arguments;
    va_start(arguments, format);
    const int wanted = std::vsnprintf(text.data() + length, room, format, arguments);
    va_end(arguments);
    length += std::min(static_cast<std::size_t>(std::max(wanted, 0)), room - 1);
}

void LogLine::NoteCount(unsigned int count) {
    if (count > 1) {
        Note(" [%u times]", count);
    }
}

void LogLine::NoteHeld(unsigned int count, std::chrono::seconds age) {
    Note(" [%u times, last %lld s ago]", count, static_cast<long long>(age.count()));
}

std::string_view LogLine::Finish() {
    text.at(length) = '\n';
    return {text.data(), length + 1};
}

}  // namespace binding
