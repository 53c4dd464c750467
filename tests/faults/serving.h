// Sends requests to the whole service, in this process or in a fresh copy of it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Serves one request for @p uri with the faults of each element of @p plan. All are served by one
/// call of @p run, by default the loop of the service. Returns what was seen: [0] before the first
/// request, [1] during the first and so on; the end of the loop belongs to the last one.
std::vector<Exchange> Serve(Device& device, const std::string& uri,
                            std::vector<std::vector<Fault>> plan, int (*run)() = nullptr);

/// The results of tests that run in other processes.
struct Report {
    long cases = 0;
    long problems = 0;
    /// The first problems, and other lines for the reader.
    std::vector<std::string> texts;
    /// Calls of the platform that were made, and how often at most in one request.
    std::map<std::string, int> calls;

    void Problem(const std::string& text);
    void Note(const Exchange& exchange);
    void Note(const std::vector<Exchange>& exchanges);
    void Add(const Report& other);
};

/// Runs @p test in a new process that has not served anything yet, and adds its report to @p
/// report. It is a problem, too, when the process cannot be started or dies, unless @p excused
/// returns true for its status.
void InFreshProcess(Report& report, const std::string& name,
                    const std::function<void(Report&)>& test,
                    const std::function<bool(int)>& excused = nullptr);

/// What is wrong with the answer @p text, which must hold the login status and, unless it is empty,
/// the member @p member; empty when nothing is wrong.
std::string FaultOfAnswer(const std::string& text, const std::string& member);

/// Prints how much was tried and makes each problem a failure of the test.
void Print(const char* what, const Report& report);
