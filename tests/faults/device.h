// A whole device that works, and of which any call can be made to fail in any request.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "bindings/recording/recording.h"

/// What a failing call leaves in its output parameters: in each of their bytes, but for kLargest,
/// which makes every number the largest that there is.
enum class Garbage { kNone, kZero, kAllOnes, kHighBits, kEndlessText, kLargest };

enum class Thrown { kNothing, kBadAlloc, kError, kNumber };

/// A call that answers @p code, 0 being as good a failure as any where success is another number.
struct Fault {
    std::string call;
    int code = 1;
    Garbage garbage = Garbage::kNone;
    Thrown thrown = Thrown::kNothing;
    /// Which call of the request, from 1; all of them for 0.
    int occurrence = 0;
};

std::string Describe(const std::vector<Fault>& faults);

/// What was seen of one request.
struct Exchange {
    int responses = 0;
    int status = 0;
    std::string body;
    /// Lines of level 3 and of the system log, and others that tell of a failure.
    std::vector<std::string> errors;
    /// Calls that failed, with the number of the call in the request.
    std::set<std::pair<std::string, int>> failed;
    /// How often each call was made.
    std::map<std::string, int> calls;
};

/// Which device: what one kind never asks for, the other does.
enum class Model { kFiveGWithTwoSims, kThreeGWithOneSim };

class Device : public recording::Director {
  public:
    explicit Device(Model model);

    /// The faults of the requests to come, one element each; forgets what was seen.
    void Plan(std::vector<std::vector<Fault>> faults);

    /// Faults that stand from now on, outside of requests, too.
    std::vector<Fault> standing;

    /// What was seen so far; [0] stands for what happened before the first request.
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
