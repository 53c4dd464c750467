#include "tools/kestal_record/record_order.h"

#include <utf8.h>

#include <algorithm>
#include <utility>

#include "tools/time_argument.h"

namespace {

/// The parts of the option's value between commas; none if it is not given.
std::vector<std::string> Names(const Arguments& arguments, const std::string& option) {
    std::vector<std::string> names;
    if (!arguments.Given(option)) {
        return names;
    }
    const std::string& text = arguments.Value(option);
    if (!utf8::is_valid(text.begin(), text.end())) {
        throw UsageError(option + ": names are written in UTF-8");
    }
    std::size_t begin = 0;
    while (begin <= text.size()) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        names.push_back(text.substr(begin, end - begin));
        if (names.back().empty() || names.back() == "error") {
            throw UsageError(option + ": '" + names.back() + "' is not a name");
        }
        begin = end + 1;
    }
    return names;
}

}  // namespace

std::vector<Option> RecordOptions() {
    return {{.name = "--for",
             .description = "Record so long, such as 10m or 90s, and write FILE-scenario.json, too",
             .value = "TIME"},
            {.name = "--every", .description = "Look at the device so often (1s)", .value = "TIME"},
            {.name = "--names",
             .description = "Fields, applications, pages and languages to ask for, too, with "
                            "commas between them",
             .value = "NAMES"},
            {.name = "--channels",
             .description = "Channels of the message bus to ask for, too",
             .value = "CHANNELS"},
            {.name = "--keep-identities",
             .description = "Do not replace what identifies people, devices and networks"},
            {.name = "--bundle",
             .description = "Write one file for a report: with versions, the end of the log and "
                            "what the sources tell"},
            {.name = "--log",
             .description = "The log for --bundle (KESTAL_LOG, or else the journal)",
             .value = "FILE"},
            {.name = "--force", .description = "Replace files that exist already"}};
}

Order OrderOf(const Arguments& arguments, const RecordedBinding& recorded) {
    Order order;
    order.file = arguments.Value("FILE");
    if (order.file.empty()) {
        throw UsageError("FILE: expected a name, found nothing");
    }
    if (arguments.Given("--for")) {
        order.length = TimeIn(arguments, "--for");
    }
    if (arguments.Given("--every")) {
        constexpr std::chrono::milliseconds kLeast{100};
        order.interval = TimeIn(arguments, "--every", kLeast);
    }
    for (const auto& [option, other] :
         {std::pair("--every", "--for"), std::pair("--log", "--bundle")}) {
        if (arguments.Given(option) && !arguments.Given(other)) {
            throw UsageError(std::string(option) + " requires " + other);
        }
    }
    order.questions = {Names(arguments, "--names"), Names(arguments, "--channels"), recorded.codes};
    order.keepsIdentities = arguments.Given("--keep-identities");
    order.isBundle = arguments.Given("--bundle");
    order.log = arguments.Value("--log");
    order.existing = arguments.Given("--force") ? Existing::replaced : Existing::refused;
    return order;
}
