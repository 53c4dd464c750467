#include "tools/kestal_record/record_command.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "bindings/json/formatted.h"
#include "bindings/posix/files/file_io.h"
#include "tools/kestal_record/bundle.h"
#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/identities.h"
#include "tools/kestal_record/new_files.h"
#include "tools/kestal_record/record_device.h"
#include "tools/kestal_record/record_order.h"
#include "tools/kestal_record/stop_signals.h"
#include "tools/kestal_record/timeline.h"
#include "version/version.h"

namespace {

using Clock = std::chrono::steady_clock;
using Time = Timeline::Time;

/// Beside the document: afternoon-scenario.json for afternoon.json.
std::string ScenarioFile(const std::string& file) {
    const std::string ending = ".json";
    const std::string name =
        file.ends_with(ending) ? file.substr(0, file.size() - ending.size()) : file;
    return name + "-scenario" + ending;
}

struct Recording {
    Timeline timeline;
    Time length;
};

std::string NowText() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    (void)gmtime_r(&now, &utc);
    std::array<char, sizeof("9999-12-31T23:59:59Z")> text{};
    (void)std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc);
    return text.data();
}

/// The recorded parts, with or without identities.
class Parts {
  public:
    Parts(const Order& newOrder, const Recording& recording, const RecordedBinding& binding)
        : order(newOrder), device(recording.timeline.First()) {
        identities.LearnFromRecording(device);
        if (order.length > Time(0)) {
            scenario = recording.timeline.Scenario(recording.length);
            identities.LearnFromRecording(*scenario);
        }
        if (order.isBundle) {
            log = LastLogLines(order.log);
            sources = SourceReport(binding);
            if (sources.is_array()) {
                identities.LearnFromSources(sources);
            } else {
                identities.LearnFrom(sources.get<std::string>());
            }
            for (const Json& line : log) {
                identities.LearnFromLog(line.get<std::string>());
            }
        }
        title = "A recorded device (" + binding.name + " binding, kestal " + KestalVersion() + ")";
    }

    Json Device() {
        Json document = {{"title", title}};
        document.update(Document(device));
        Json& sys = document["sys"];
        for (auto entry = sys.begin(); entry != sys.end();) {
            entry = entry->is_null() ? sys.erase(entry) : std::next(entry);
        }
        return document;
    }

    std::optional<Json> Scenario() {
        if (!scenario) {
            return std::nullopt;
        }
        Json document = {{"title", title}};
        document.update(Document(*scenario));
        return document;
    }

    Json Bundle(const RecordedBinding& binding) {
        Json bundle = {{"recorded", NowText()},
                       {"versions", Versions(binding)},
                       {"identities", order.keepsIdentities ? "kept" : "replaced"},
                       {"device", Device()}};
        if (const auto document = Scenario()) {
            bundle["scenario"] = *document;
        }
        bundle["sources"] = Sources();
        bundle["log"] = Plain(log);
        return bundle;
    }

  private:
    Json Document(const Json& recorded) {
        return Finished(recorded, [this](const std::vector<std::string>& path,
                                         const std::string& text, TextLayout layout) {
            return order.keepsIdentities ? text : identities.ReplacedAt(path, text, layout);
        });
    }

    Json Plain(const Json& value) {
        return order.keepsIdentities ? value : identities.ReplacedIn(value);
    }

    /// What they have said, and why they are lost, comes from outside; names and states do not.
    Json Sources() {
        if (!sources.is_array()) {
            return Plain(sources);
        }
        Json report = sources;
        for (Json& source : report) {
            for (const char* const part : {"said", "reason"}) {
                if (source.contains(part)) {
                    source[part] = Plain(source[part]);
                }
            }
        }
        return report;
    }

    const Order& order;
    const Json& device;
    std::optional<Json> scenario;
    Json sources;
    Json log = Json::array();
    Identities identities;
    std::string title;
};

std::string Text(const Json& document) {
    return binding::Formatted(document) + "\n";
}

/// The text of a document or a scenario, which the simulator must be able to read.
std::string DocumentText(const std::string& file, const Json& document) {
    std::string text = Text(document);
    if (text.size() > binding::kLargestFile) {
        throw std::runtime_error(file + ": would have " + std::to_string(text.size()) +
                                 " bytes, and a document has at most " +
                                 std::to_string(binding::kLargestFile));
    }
    return text;
}

std::string EndRemark(Time time, const std::string& why) {
    return "the recording ended after " + std::to_string(time.count() / 1000) + " s" + why;
}

/// Looks at the device until the time is over, or until a signal, a full scenario or a look that
/// fails ends that.
Recording Record(const Order& order, const RecordedBinding& binding, Remarks& remarks) {
    std::optional<StopSignals> signals;
    if (order.length > Time(0)) {
        signals.emplace();
    }
    const Clock::time_point begin = Clock::now();
    const auto passed = [begin] { return std::chrono::floor<Time>(Clock::now() - begin); };
    Recording recording = {Timeline(RecordDevice(order.questions, remarks)), Time(0)};
    if (const std::string remark = binding.remark ? binding.remark() : ""; !remark.empty()) {
        remarks.insert(remark);
    }
    if (signals && !order.isBundle) {
        // A document that is too long is refused now rather than after the recording.
        (void)DocumentText(order.file, Parts(order, recording, binding).Device());
    }
    Time next = order.interval;
    while (signals && signals->WaitUntil(begin + std::min(next, order.length))) {
        recording.length = std::min(passed(), order.length);
        try {
            if (!recording.timeline.Add(recording.length, RecordDevice(order.questions, remarks))) {
                remarks.insert(EndRemark(recording.length,
                                         ", because a scenario cannot hold more changes; --every "
                                         "makes the next one longer"));
                return recording;
            }
        } catch (const std::exception& error) {
            remarks.insert(EndRemark(recording.length, std::string(": ") + error.what()));
            return recording;
        }
        if (recording.length >= order.length) {
            return recording;
        }
        // Looks that the device was too slow for are left out.
        while (next <= passed()) {
            next += order.interval;
        }
    }
    recording.length = std::min(passed(), order.length);
    return recording;
}

void RunRecord(const Arguments& arguments, const RecordedBinding& binding) {
    const Order order = OrderOf(arguments, binding);
    const bool hasScenarioFile = order.length > Time(0) && !order.isBundle;
    MustBeWritable(order.file, order.existing);
    if (hasScenarioFile) {
        MustBeWritable(ScenarioFile(order.file), order.existing);
    }
    if (order.isBundle) {
        MustHaveLog(order.log);
    }
    Remarks remarks;
    const Recording recording = Record(order, binding, remarks);
    Parts parts(order, recording, binding);
    std::vector<NewFile> files;
    if (order.isBundle) {
        files.push_back({order.file, Text(parts.Bundle(binding))});
    } else {
        files.push_back({order.file, DocumentText(order.file, parts.Device())});
    }
    if (hasScenarioFile) {
        const std::string file = ScenarioFile(order.file);
        files.push_back({file, DocumentText(file, *parts.Scenario())});
    }
    WriteFiles(files, order.existing,
               order.keepsIdentities ? Readers::ownerOnly : Readers::asTheUmaskAllows);
    for (const std::string& remark : remarks) {
        (void)std::fprintf(stderr, "%s\n", remark.c_str());
    }
}

}  // namespace

Command RecordCommand(const std::string& name, const RecordedBinding& recorded) {
    return {.names = name.empty() ? std::vector<std::string>() : std::vector<std::string>{name},
            .description = "Record the device as a document, with a time also what changes",
            .parameters = {{"FILE", "The document to write"}},
            .run = [recorded](const Arguments& arguments,
                              std::ostream& /*out*/) { RunRecord(arguments, recorded); },
            .options = RecordOptions()};
}
