#include "conformance/query.h"

#include "conformance/guarded_buffer.h"

namespace conformance {

namespace {

/// The results of making a call once: its code and the contents of each result.
struct Made {
    int code = 0;
    std::vector<GuardedBuffer> buffers;
    Duration time{};
};

Made Make(Probe& probe, const Query& query, std::byte fill) {
    Made made;
    std::vector<void*> pointers;
    for (const Result& result : query.results) {
        made.buffers.emplace_back(result.size, fill);
    }
    for (GuardedBuffer& buffer : made.buffers) {
        pointers.push_back(buffer.Data());
    }
    made.time = probe.Make(query.call, [&] { made.code = query.make(pointers); });
    return made;
}

/// The code and, if the call has succeeded, the values.
Outcome OutcomeOf(const Query& query, const Made& made) {
    Outcome outcome{std::to_string(made.code), ""};
    if (made.code == query.success) {
        for (std::size_t index = 0; index < made.buffers.size(); ++index) {
            const auto bytes = made.buffers[index].Bytes();
            const std::string values = Values(query.results[index].fields(bytes), bytes);
            outcome.values += (outcome.values.empty() || values.empty() ? "" : ", ") + values;
        }
    }
    return outcome;
}

void CheckMemory(Report& report, const Query& query, const Made& made) {
    for (const GuardedBuffer& buffer : made.buffers) {
        if (const std::string damage = buffer.Damage(); !damage.empty()) {
            report.Fail(query.call, "writes " + damage);
        }
        if (made.code != query.success && !buffer.IsUntouched()) {
            report.Fail(query.call, "fails with " + std::to_string(made.code) +
                                        ", but has written to its result");
        }
    }
}

void CheckValues(Report& report, const Query& query, const Made& made) {
    if (made.code != query.success) {
        return;
    }
    for (std::size_t index = 0; index < made.buffers.size(); ++index) {
        const auto bytes = made.buffers[index].Bytes();
        for (const Field& field : query.results[index].fields(bytes)) {
            if (const std::string problem = field.Problem(bytes); !problem.empty()) {
                report.Fail(query.call, problem);
            }
        }
    }
}

/// Reports each field that still has the fill value after both calls, which were made with
/// different fills.
void CheckThatAllIsWritten(Report& report, const Query& query, const Made& first,
                           const Made& second) {
    if (first.code != query.success || second.code != query.success) {
        return;
    }
    for (std::size_t index = 0; index < first.buffers.size(); ++index) {
        const auto bytes = first.buffers[index].Bytes();
        for (const Field& field : query.results[index].fields(bytes)) {
            if (field.IsUnwritten(bytes, GuardedBuffer::kFill) &&
                field.IsUnwritten(second.buffers[index].Bytes(), GuardedBuffer::kOtherFill)) {
                report.Fail(query.call, "succeeds, but has not written " + field.name);
            }
        }
    }
}

}  // namespace

void Examine(Probe& probe, const Query& query) {
    const Made first = Make(probe, query, GuardedBuffer::kFill);
    Report& report = probe.Told();
    report.Answered(query.call + "(" + query.arguments + ")", OutcomeOf(query, first).Text(),
                    first.time);
    CheckMemory(report, query, first);
    const Made second = Make(probe, query, GuardedBuffer::kOtherFill);
    report.Answered(query.call + "(" + query.arguments + ") again", OutcomeOf(query, second).Text(),
                    second.time);
    CheckMemory(report, query, second);
    CheckThatAllIsWritten(report, query, first, second);
    CheckValues(report, query, second);
    probe.Keep({query.call, [&probe, query] {
                    const Made made = Make(probe, query, GuardedBuffer::kFill);
                    CheckMemory(probe.Told(), query, made);
                    CheckValues(probe.Told(), query, made);
                    return OutcomeOf(query, made);
                }});
}

}  // namespace conformance
