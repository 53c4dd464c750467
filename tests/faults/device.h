// A complete simulated device. Any of its calls can be made to fail in any request.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"

/// What a failing call writes to its output parameters: the same value to each byte, except for
/// kLargest, which sets every number to its largest value.
enum class Garbage { kNone, kZero, kAllOnes, kHighBits, kEndlessText, kLargest };

enum class Thrown { kNothing, kBadAlloc, kError, kNumber };

/// A call that returns @p code. For calls that succeed with another number than 0, 0 is a failure.
struct Fault {
    std::string call;
    int code = 1;
    Garbage garbage = Garbage::kNone;
    Thrown thrown = Thrown::kNothing;
    /// The number of the failing call of that name in the request, from 1; 0 means all of them.
    int occurrence = 0;
};

std::string Describe(const std::vector<Fault>& faults);

/// What was observed during one request.
struct Exchange {
    int responses = 0;
    int status = 0;
    std::string body;
    /// Log lines that report a failure: those of level 3, those of the system log and some others.
    std::vector<std::string> errors;
    /// Calls that failed, each with its number among the calls of that name in the request.
    std::set<std::pair<std::string, int>> failed;
    /// The number of times that each call was made.
    std::map<std::string, int> calls;
};

/// Kinds of device. The service makes some calls only for one of them; together they cover all.
enum class Model { kFiveGWithTwoSims, kThreeGWithOneSim };

class Device : public recording::Director {
  public:
    explicit Device(Model model);

    /// Sets the faults of the next requests, one element for each, and clears exchanges.
    void Plan(std::vector<std::vector<Fault>> faults);

    /// Faults in all requests and outside of them.
    std::vector<Fault> standing;

    /// What was observed so far; [0] is for the time before the first request.
    std::vector<Exchange> exchanges{1};

    int Answer(const recording::Call& call) override;
    void See(const std::string& line) override;

  private:
    using Handler = std::function<int(const recording::Call&)>;

    void GiveSystem(Model model);
    void GiveCellular(Model model);
    void GiveSims();
    void GiveWebUi();
    void GiveNotifications();
    void GiveProcess();
    const Fault* FaultOf(const std::string& call, int occurrence) const;

    std::map<std::string, Handler> handlers;
    std::vector<std::vector<Fault>> plan;
};
