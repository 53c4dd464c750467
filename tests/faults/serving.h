// Sends requests to the whole service, in this process or in a new one.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Serves one request for @p uri for each element of @p plan, with the faults in that element. One
/// call of @p run, by default the loop of the service, serves them all. Returns what was observed:
/// [0] before the first request, [1] during the first and so on; the last one includes the end of
/// the loop.
std::vector<Exchange> Serve(Device& device, const std::string& uri,
                            std::vector<std::vector<Fault>> plan, int (*run)() = nullptr);

/// The results of tests that run in other processes.
struct Report {
    long cases = 0;
    long problems = 0;
    /// The first problems, or other lines that the test wants to return.
    std::vector<std::string> texts;
    /// Calls of the platform that were made, and the greatest number of them in one request.
    std::map<std::string, int> calls;

    void Problem(const std::string& text);
    void Note(const Exchange& exchange);
    void Note(const std::vector<Exchange>& exchanges);
    void Add(const Report& other);
};

/// Runs @p test in a new process that has not served any request yet, and adds its report to @p
/// report. It also reports a problem if the process cannot be started or crashes, unless @p excused
/// returns true for its status.
void InFreshProcess(Report& report, const std::string& name,
                    const std::function<void(Report&)>& test,
                    const std::function<bool(int)>& excused = nullptr);

/// Returns what is wrong with the answer @p text, or nothing. The answer must have the login status
/// and, unless @p member is empty, that member.
std::string FaultOfAnswer(const std::string& text, const std::string& member);

/// Prints the number of cases and makes the test fail for each problem.
void Print(const char* what, const Report& report);
