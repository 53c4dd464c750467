#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "bindings/recording/recording.h"
#include "platform/toru_dbg.h"

namespace {

[[gnu::format(printf, 1, 0)]] std::string Format(const char* format, std::va_list arguments) {
    const recording::InsidePlatform inside;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): too large to be cleared for each line
    std::array<char, 65536> text;
    (void)std::vsnprintf(text.data(), text.size(), format, arguments);
    return text.data();
}

}  // namespace

int toru_dbg_start(const char* programName) {
    const recording::InsidePlatform inside;
    return recording::Play("toru_dbg_start", programName, {}, 0);
}

void toru_dbg_stop() {
    const recording::InsidePlatform inside;
    recording::Play("toru_dbg_stop", "", {}, 0);
}

void toru_dbg_log(const char* module, int level, const char* format, ...) {
    const recording::InsidePlatform inside;
    std::va_list arguments;
    va_start(arguments, format);
    std::string line = "log " + std::to_string(level) + " " + Format(format, arguments);
    va_end(arguments);
    // Lines contain the name of their module as a tag. For those that do not, the module is added.
    if (line.find("[" + std::string(module) + "]") == std::string::npos) {
        line += " (module " + std::string(module) + ")";
    }
    recording::Record(std::move(line));
}

void toru_dbg_syslog(int priority, const char* format, ...) {
    const recording::InsidePlatform inside;
    std::va_list arguments;
    va_start(arguments, format);
    recording::Record("syslog " + std::to_string(priority) + " " + Format(format, arguments));
    va_end(arguments);
    recording::Act("toru_dbg_syslog");
}

const char* toru_dbg_get_level_name(int level) {
    static constexpr std::array<const char*, 8> kNames = {"EMERG",   "ALERT",  "CRIT", "ERROR",
                                                          "WARNING", "NOTICE", "INFO", "DEBUG"};
    // cppcheck-suppress CastIntegerToAddressAtReturn ; cppcheck takes the elements for numbers
    return level >= 0 && level < 8 ? kNames[static_cast<std::size_t>(level)] : "UNKNOWN";
}
