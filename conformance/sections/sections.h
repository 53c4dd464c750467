// The sections of the examination, one for each part of platform/ and a few more.
#pragma once

#include <span>

#include "conformance/probe.h"
#include "conformance/sections/options.h"

namespace conformance {

struct Section {
    const char* name;
    void (*run)(Probe&, const Options&);
};

void ExamineLog(Probe& probe, const Options& options);
void ExamineSysint(Probe& probe, const Options& options);
void ExamineWebui(Probe& probe, const Options& options);
void ExamineMsgbus(Probe& probe, const Options& options);
void ExamineSession(Probe& probe, const Options& options);
void ExamineCgi(Probe& probe, const Options& options);
void ExamineMaintenance(Probe& probe, const Options& options);
void ExamineLanguage(Probe& probe, const Options& options);
void ExamineWatchdog(Probe& probe, const Options& options);

/// These two repeat the calls that the earlier sections have kept.
void ExamineThreads(Probe& probe, const Options& options);
void ExamineSignals(Probe& probe, const Options& options);

/// Starts and stops the data call.
void ExamineActions(Probe& probe, const Options& options);

/// All sections, in the order in which they run.
std::span<const Section> Sections();

}  // namespace conformance
