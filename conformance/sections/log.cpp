// platform/toru_dbg.h.
#include "conformance/sections/sections.h"
#include "platform/toru_dbg.h"

namespace conformance {

namespace {

constexpr const char* kModule = "CONFORMANCE";
constexpr const char* kProgram = "kestal-conformance";

std::string Nothing() {
    return "";
}

void ExamineLevelName(Probe& probe, int level) {
    constexpr const char* kCall = "toru_dbg_get_level_name";
    const char* name = nullptr;
    probe.Tell(
        kCall, std::to_string(level), [&] { name = toru_dbg_get_level_name(level); },
        [&] { return name == nullptr ? std::string("null") : Quoted(name); });
    if (name == nullptr) {
        probe.Told().Fail(kCall, "returns null for level " + std::to_string(level));
    }
}

}  // namespace

void ExamineLog(Probe& probe, const Options& /*options*/) {
    (void)probe.Code("toru_dbg_start", kProgram, [] { return toru_dbg_start(kProgram); });
    for (const int level : {int{TORU_DBG_ERROR}, int{TORU_DBG_NOTICE}, int{TORU_DBG_INFO},
                            int{TORU_DBG_DEBUG}, 0, 4, 8, -1, 1000}) {
        ExamineLevelName(probe, level);
    }
    const std::string longText(5000, 'x');
    probe.Tell(
        "toru_dbg_log", "a short line",
        [] { toru_dbg_log(kModule, TORU_DBG_DEBUG, "%s %d %%", "conformance", 1); }, Nothing);
    probe.Tell(
        "toru_dbg_log", "a line of 5000 characters",
        [&] { toru_dbg_log(kModule, TORU_DBG_DEBUG, "%s", longText.c_str()); }, Nothing);
    probe.Tell(
        "toru_dbg_syslog", "a short line",
        [] { toru_dbg_syslog(TORU_DBG_SYSLOG_PRIORITY, "%s: %s", kProgram, "a line to look for"); },
        Nothing);
    probe.Keep({"toru_dbg_log", [&probe] {
                    (void)probe.Make("toru_dbg_log", [] {
                        toru_dbg_log(kModule, TORU_DBG_DEBUG, "%s", "at the same time");
                    });
                    return Outcome();
                }});
    probe.Tell("toru_dbg_stop", "", toru_dbg_stop, Nothing);
    probe.Tell(
        "toru_dbg_log", "after the end",
        [] { toru_dbg_log(kModule, TORU_DBG_DEBUG, "%s", "may be lost"); }, Nothing);
    // The log stays open for the calls that follow.
    (void)probe.Code("toru_dbg_start", kProgram, [] { return toru_dbg_start(kProgram); });
}

}  // namespace conformance
