#include "tools/kestal_sim/fault.h"

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/kestal_sim/document.h"
#include "tools/time_argument.h"

namespace {

using json = nlohmann::ordered_json;

double ProbabilityIn(const std::string& text) {
    std::string_view rest = text;
    const double number = TakeNumber(rest);
    if (!rest.empty() || !(number >= 0 && number <= 1)) {
        throw UsageError("--probability: '" + text + "' is not a number from 0 to 1");
    }
    return number;
}

}  // namespace

std::vector<Option> FaultOptions() {
    return {{.name = "--times",
             .description = "Only so many calls fail, are slow or hang",
             .value = "N",
             .range = {{1, 1'000'000'000}}},
            {.name = "--probability",
             .description = "Calls fail, are slow or hang with this probability",
             .value = "P"},
            {.name = "--seed",
             .description = "Another sequence of such calls; the same for the same number",
             .value = "N",
             .range = {{0, std::numeric_limits<std::uint32_t>::max()}}},
            {.name = "--delay",
             .description = "The call takes this time, such as 2s or 500ms; then it answers, or "
                            "fails if there is a CODE",
             .value = "TIME"},
            {.name = "--hang",
             .description = "The call does not return until it is healed",
             .excludes = {"CODE", "--delay"}}};
}

json FaultOf(const Arguments& arguments) {
    const bool hasCode = arguments.Given("CODE");
    const bool isDelayed = arguments.Given("--delay");
    const bool hangs = arguments.Given("--hang");
    if (!hasCode && !isDelayed && !hangs) {
        throw UsageError("CODE, --delay or --hang is required");
    }
    if (arguments.Given("--seed") && !arguments.Given("--probability")) {
        throw UsageError("--seed requires --probability");
    }
    json fault = {{"error", nullptr}};
    if (hasCode) {
        fault["error"] = ValueOf(arguments.Value("CODE"));
    }
    if (arguments.Given("--times")) {
        fault["times"] = std::stoll(arguments.Value("--times"));
    }
    if (arguments.Given("--probability")) {
        fault["probability"] = ProbabilityIn(arguments.Value("--probability"));
    }
    if (arguments.Given("--seed")) {
        fault["seed"] = std::stoll(arguments.Value("--seed"));
    }
    if (isDelayed) {
        fault["delay"] = SecondsOf(TimeIn(arguments, "--delay"));
    }
    if (hangs) {
        fault["hang"] = true;
    }
    return fault;
}
