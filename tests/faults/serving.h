// Requests to the whole service, in this process or in one that is as good as new.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Serves one request for @p uri per element of @p plan, the faults of each, by one call of @p run,
/// which is the service's loop when it is left out. Returns what was seen: [0] before the first
/// request, [1] during the first and so on; the end of the loop counts as part of the last.
std::vector<Exchange> Serve(Device& device, const std::string& uri,
                            std::vector<std::vector<Fault>> plan, int (*run)() = nullptr);

/// What tests in other processes have to say.
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

/// Runs @p test in a process that has served nothing yet, and adds what it reports. That there is
/// no such process, or that it dies, is a problem, too, unless @p excused says otherwise of its
/// status.
void InFreshProcess(Report& report, const std::string& name,
                    const std::function<void(Report&)>& test,
                    const std::function<bool(int)>& excused = nullptr);

/// Why @p text is no answer that holds the login status and, unless it is empty, the member
/// @p member; empty when it is.
std::string FaultOfAnswer(const std::string& text, const std::string& member);

/// Prints how much was tried and makes each problem a failure of the test.
void Print(const char* what, const Report& report);
