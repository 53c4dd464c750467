#include "bindings/document/fault_reader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "bindings/document/answer_reader.h"
#include "bindings/document/document_time.h"
#include "platform/sysint.h"

namespace binding {

namespace {

constexpr double kShortestDelay = 0.001;
constexpr const char* kNumbers = "a 32-bit integer other than 0 and 983040";

/// A code with which calls can fail: a number, or the name that one has there.
int ReadCode(const Node& node) {
    const auto number = NumberOf<int>(node.Value());
    if (!number) {
        return static_cast<int>(ReadName(node, kNumbers));
    }
    if (*number == SYS_SUCCESS || *number == WEBUI_SUCCESS) {
        node.Expected(kNumbers);
    }
    return *number;
}

/// The code in an order. Any text may be a name, because the names depend on the call, which the
/// order does not say.
int ReadCodeOrAnyName(const Node& node) {
    constexpr int kAnyCode = 1;
    if (node.Text() != nullptr) {
        return kAnyCode;
    }
    if (!node.Value().is_number()) {
        node.Expected("a 32-bit integer or the name of a code");
    }
    return ReadCode(node);
}

std::uint32_t ReadTimes(const Node& node) {
    constexpr std::uint32_t kMost = 1'000'000'000;
    const auto number = NumberOf<std::uint32_t>(node.Value());
    if (!number || *number == 0 || *number > kMost) {
        node.Expected("a number from 1 to 1000000000");
    }
    return *number;
}

double ReadProbability(const Node& node) {
    const double number = node.Value().is_number() ? node.Value().get<double>() : -1;
    if (!(number >= 0 && number <= 1)) {
        node.Expected("a number from 0 to 1");
    }
    return number;
}

/// Reads when the fault happens.
void ReadOccurrence(Members& members, FaultPlan& plan) {
    if (const auto times = members.Find("times")) {
        plan.times = ReadTimes(*times);
    }
    if (const auto probability = members.Find("probability")) {
        plan.probability = ReadProbability(*probability);
    }
    if (const auto seed = members.Find("seed")) {
        if (!plan.probability) {
            seed->Expected("\"probability\" beside it", "none");
        }
        Read(*seed, plan.seed);
    }
}

/// Reads for how long the call waits.
void ReadWait(Members& members, FaultPlan& plan) {
    if (const auto delay = members.Find("delay")) {
        plan.delay = ReadSeconds(*delay, kShortestDelay);
    }
    if (const auto hang = members.Find("hang")) {
        if (hang->Value() != true) {
            hang->Expected("true");
        }
        plan.hangs = true;
        if (plan.code != 0 || plan.delay.count() != 0) {
            hang->Expected("neither an error nor \"delay\" beside it", "one of them");
        }
    }
}

/// Reads all that @p members, those of @p object, say about the fault itself.
FaultPlan ReadPlan(const Node& object, Members& members, int (*readCode)(const Node&)) {
    FaultPlan plan;
    const auto error = members.Find("error");
    const bool hasError = error && !error->Value().is_null();
    if (hasError) {
        plan.code = readCode(*error);
    }
    ReadOccurrence(members, plan);
    ReadWait(members, plan);
    if (!hasError && !plan.hangs && plan.delay.count() == 0) {
        if (error) {
            ExpectedNumber(*error, std::string(kNumbers) + ", or \"delay\" or \"hang\" beside it");
        }
        object.Expected("an object with \"error\", \"delay\" or \"hang\"", "one without");
    }
    return plan;
}

}  // namespace

std::shared_ptr<Fault> FaultCollector::WithPlan(FaultPlan plan) {
    const auto before = std::find_if(earlier.begin(), earlier.end(),
                                     [&](const auto& fault) { return fault->Plan() == plan; });
    collected.push_back(before == earlier.end() ? std::make_shared<Fault>(std::move(plan))
                                                : *before);
    return collected.back();
}

FaultPlan ReadFaultPlan(const Node& object) {
    Members members(object);
    FaultPlan plan = ReadPlan(object, members, ReadCode);
    if (const auto since = members.Find("since")) {
        plan.since = TimeText(ReadTime(*since));
    }
    (void)members.Find(kHealedName);
    members.RejectOthers();
    return plan;
}

void CheckFaultOrder(const Node& object) {
    Members members(object);
    (void)ReadPlan(object, members, ReadCodeOrAnyName);
    members.RejectOthers();
}

bool IsMoreThanAnError(const FaultPlan& plan) {
    FaultPlan error;
    error.call = plan.call;
    error.code = plan.code;
    return plan != error;
}

Failure ReadFailure(const Node& node, const std::function<void(const Node&)>& readHealed) {
    if (!node.IsObject() || !node.HasMember("error")) {
        return {};
    }
    FaultPlan plan = ReadFaultPlan(node);
    plan.call = PathText(node.Path());
    const bool isFault = IsMoreThanAnError(plan);
    if (!node.HasMember(kHealedName)) {
        if (isFault) {
            node.Expected("\"healed\", the answer of calls that do not fail, beside \"error\"",
                          "none");
        }
        return {.code = plan.code};
    }
    const Node healed = node.Member(kHealedName);
    if (!healed.Value().is_null()) {
        if (isFault && healed.IsObject() && healed.HasMember("error") &&
            IsMoreThanAnError(ReadFaultPlan(healed))) {
            healed.Expected("an answer or {\"error\": N}", "another fault");
        }
        readHealed(healed);
    }
    if (!isFault) {
        return {.code = plan.code};
    }
    return {.fault = node.Faults()->WithPlan(std::move(plan))};
}

}  // namespace binding
