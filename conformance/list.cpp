#include "conformance/list.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <span>

#include "conformance/guarded_buffer.h"

namespace conformance {

namespace {

/// The number of records that a buffer has room for; nothing means that there is no buffer.
using Room = std::optional<std::int64_t>;

/// A list that needs more memory is taken for a mistake, and none is allocated for it.
constexpr std::int64_t kMostMebibytes = 16;
/// How often a list that changes while it is being examined is examined again.
constexpr int kTries = 5;

/// The results of making the call once.
struct Made {
    int code = 0;
    std::int64_t count = 0;
    std::vector<std::byte> bytes;
};

/// Makes the call of a list with guarded buffers and checks what it writes.
class ListCall {
  public:
    ListCall(Probe& newProbe, const List& newList) : probe(newProbe), list(newList) {}

    Made Make(Room room, std::int32_t count, std::byte fill) const {
        GuardedBuffer records(static_cast<std::size_t>(room.value_or(0)) * list.recordSize, fill);
        GuardedBuffer counter(sizeof(count), fill);
        std::memcpy(counter.Data(), &count, sizeof(count));
        Made made;
        made.code = 0;
        time = probe.Make(list.call, [&] {
            made.code = list.make(room ? records.Data() : nullptr, counter.Data());
        });
        std::int32_t after = 0;
        std::memcpy(&after, counter.Bytes().data(), sizeof(after));
        made.count = after;
        made.bytes.assign(records.Bytes().begin(), records.Bytes().end());
        CheckMemory(made, records, counter, count);
        return made;
    }

    /// Makes the call like Make, and prints its answer.
    Made Tell(Room room, std::int32_t count, std::byte fill = GuardedBuffer::kFill) const {
        Made made = Make(room, count, fill);
        const std::string buffer = room ? "room for " + std::to_string(*room) : "no buffer";
        probe.Told().Answered(
            list.call + "(" + list.arguments + (list.arguments.empty() ? "" : ", ") + buffer +
                ", " + std::to_string(count) + ")",
            std::to_string(made.code) + ", count " + std::to_string(made.count), time);
        return made;
    }

    bool HasWorked(const Made& made) const { return made.code == list.success; }
    bool NeedsBuffer(const Made& made) const { return made.code == list.bufferNeeded; }
    bool HasFailed(const Made& made) const { return !HasWorked(made) && !NeedsBuffer(made); }
    bool IsTooLong(const Made& made) const {
        const auto size = static_cast<std::int64_t>(list.recordSize);
        return made.count > kMostMebibytes * 1024 * 1024 / size;
    }
    bool MayAskForNothing() const { return list.mayAskForNothing; }

    void Fail(const std::string& reason) const { probe.Told().Fail(list.call, reason); }

  private:
    void CheckMemory(const Made& made, const GuardedBuffer& records, const GuardedBuffer& counter,
                     std::int32_t count) const {
        for (const GuardedBuffer* buffer : {&records, &counter}) {
            if (const std::string damage = buffer->Damage(); !damage.empty()) {
                Fail("writes " + damage);
            }
        }
        if (HasFailed(made) && (!records.IsUntouched() || made.count != count)) {
            Fail("fails with " + std::to_string(made.code) +
                 ", but has written to its buffer or its count");
        }
    }

    Probe& probe;
    const List& list;
    mutable Duration time{};
};

/// The results of examining a list once with several buffers.
struct Look {
    Made first;
    Made roomWithoutBuffer;
    std::optional<Made> exact;
    std::optional<Made> tooSmall;
    Made tooLarge;
    Made again;
    Made andAgain;

    /// Whether the length was the same before and after the other calls. The two calls at the end
    /// differ if it changes with every call.
    bool IsOfOneState() const { return IsAsFirst(again) && IsAsFirst(andAgain); }

  private:
    bool IsAsFirst(const Made& made) const {
        return made.code == first.code && made.count == first.count;
    }
};

/// Whether the first call, without a buffer, gave a usable length of the list.
bool TellsCount(const ListCall& call, const Made& first) {
    if (call.HasFailed(first)) {
        return false;
    }
    const std::string count = Counted(first.count, "record");
    if (first.count < 0 || call.IsTooLong(first)) {
        call.Fail(
            "without a buffer, it says that it has " + count +
            (first.count < 0 ? "" : ", more than " + std::to_string(kMostMebibytes) + " MiB"));
        return false;
    }
    if (call.HasWorked(first) && first.count > 0) {
        call.Fail("without a buffer, it succeeds although it has " + count);
        return false;
    }
    if (call.NeedsBuffer(first) && first.count == 0 && !call.MayAskForNothing()) {
        call.Fail("without a buffer, it asks for one although it has no records");
        return false;
    }
    return true;
}

Look LookAt(const ListCall& call, const Made& first) {
    constexpr std::int32_t kSpare = 3;
    const auto count = static_cast<std::int32_t>(first.count);
    Look look;
    look.first = first;
    look.roomWithoutBuffer = call.Tell(std::nullopt, count + kSpare);
    if (count > 0) {
        look.exact = call.Tell(count, count);
        look.tooSmall = call.Tell(count - 1, count - 1);
    }
    look.tooLarge = call.Tell(count + kSpare, count + kSpare, GuardedBuffer::kOtherFill);
    look.again = call.Tell(std::nullopt, 0);
    look.andAgain = call.Make(std::nullopt, 0, GuardedBuffer::kFill);
    return look;
}

using Problems = std::vector<std::string>;

std::span<const std::byte> RecordIn(const std::vector<std::byte>& bytes, const List& list,
                                    std::int64_t index) {
    return std::span(bytes).subspan(static_cast<std::size_t>(index) * list.recordSize,
                                    list.recordSize);
}

void CheckRecords(Problems& problems, const List& list, const Look& look) {
    for (std::int64_t index = 0; index < look.first.count; ++index) {
        const std::string name = "record " + std::to_string(index) + ": ";
        const auto record = RecordIn(look.exact->bytes, list, index);
        const auto again = RecordIn(look.tooLarge.bytes, list, index);
        for (const Field& field : list.fields(record)) {
            if (const std::string problem = field.Problem(record); !problem.empty()) {
                problems.push_back(name + problem);
            }
            if (field.IsUnwritten(record, GuardedBuffer::kFill) &&
                field.IsUnwritten(again, GuardedBuffer::kOtherFill)) {
                problems.push_back(name + field.name + " has not been written");
            }
        }
    }
}

/// Whether the call has filled its buffer with @p count records.
bool CheckFilled(Problems& problems, const ListCall& call, const Made& made, std::int64_t count,
                 const std::string& with) {
    if (!call.HasWorked(made)) {
        problems.push_back("with " + with + ", it returns " + std::to_string(made.code));
        return false;
    }
    if (made.count != count) {
        problems.push_back("with " + with + ", it has " + Counted(count, "record") +
                           " and sets the count to " + std::to_string(made.count));
        return false;
    }
    return true;
}

/// What is wrong with the answers in @p look. They may also look wrong because the list has become
/// longer or shorter for a moment.
Problems ProblemsOf(const ListCall& call, const List& list, const Look& look) {
    Problems problems;
    const std::int64_t count = look.first.count;
    if (look.roomWithoutBuffer.code != look.first.code || look.roomWithoutBuffer.count != count) {
        problems.emplace_back(
            "without a buffer, the count that it is given changes what it answers");
    }
    const bool filled =
        CheckFilled(problems, call, look.tooLarge, count, "more room than it needs");
    if (!look.exact) {
        return problems;
    }
    const bool filledExactly =
        CheckFilled(problems, call, *look.exact, count, "the room that it asked for");
    const bool tells = call.NeedsBuffer(*look.tooSmall) && look.tooSmall->count == count;
    if (list.tellsTooSmall ? !tells : call.HasWorked(*look.tooSmall)) {
        problems.push_back("with room for one record less than it has, it returns " +
                           std::to_string(look.tooSmall->code) + " with the count " +
                           std::to_string(look.tooSmall->count));
    }
    if (filled && filledExactly) {
        CheckRecords(problems, list, look);
    }
    return problems;
}

void CheckWhole(const List& list, std::span<const std::byte> contents) {
    if (list.check) {
        list.check(contents);
    }
}

/// The values of the first @p count records, which are also checked.
std::string ReadRecords(const ListCall& call, const List& list, const Made& made,
                        std::int64_t count) {
    if (list.recordSize == 1) {
        // Only a hash, because a block may be long and nobody reads it here.
        std::string block(static_cast<std::size_t>(count), '\0');
        std::memcpy(block.data(), made.bytes.data(), block.size());
        return "bytes with the hash " + std::to_string(std::hash<std::string>()(block));
    }
    std::string text = Counted(count, "record");
    for (std::int64_t index = 0; index < count; ++index) {
        const auto record = RecordIn(made.bytes, list, index);
        const Fields fields = list.fields(record);
        text += ", " + Values(fields, record);
        for (const Field& field : fields) {
            if (const std::string problem = field.Problem(record); !problem.empty()) {
                call.Fail("record " + std::to_string(index) + ": " + problem);
            }
        }
    }
    return text;
}

}  // namespace

ListContents Examine(Probe& probe, const List& list) {
    const ListCall call(probe, list);
    if (list.isForThreads) {
        probe.Keep({list.call, [&probe, list] { return Read(probe, list); }});
    }
    Made first = call.Tell(std::nullopt, 0);
    Problems problems;
    int wrongLooks = 0;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        if (!TellsCount(call, first)) {
            // A call that fails without a buffer must not write to a buffer either.
            (void)call.Tell(2, 2);
            return {first.code, {}};
        }
        const Look look = LookAt(call, first);
        if (look.IsOfOneState()) {
            problems = ProblemsOf(call, list, look);
            if (problems.empty()) {
                const Made& read = look.exact ? *look.exact : first;
                CheckWhole(list, read.bytes);
                return {read.code, read.bytes};
            }
            ++wrongLooks;
        }
        first = look.andAgain;
    }
    if (wrongLooks == 0) {
        problems = {"says each time that it has another number of records"};
    } else if (wrongLooks < kTries) {
        probe.Told().Note(list.call + ": the list changes too often to be judged");
        problems.clear();
    }
    for (const std::string& problem : problems) {
        call.Fail(problem);
    }
    return {first.code, {}};
}

Outcome Read(Probe& probe, const List& list) {
    const ListCall call(probe, list);
    const std::string worked = std::to_string(list.success);
    int code = 0;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const Made first = call.Make(std::nullopt, 0, GuardedBuffer::kFill);
        if (call.HasFailed(first)) {
            return {std::to_string(first.code), ""};
        }
        if (first.count < 0 || call.IsTooLong(first)) {
            return {worked, "too many records"};
        }
        if (first.count == 0 || !call.NeedsBuffer(first)) {
            CheckWhole(list, {});
            return {worked, "no records"};
        }
        const Made filled =
            call.Make(first.count, static_cast<std::int32_t>(first.count), GuardedBuffer::kFill);
        if (call.HasWorked(filled)) {
            const std::int64_t count = std::clamp<std::int64_t>(filled.count, 0, first.count);
            CheckWhole(
                list,
                std::span(filled.bytes).first(static_cast<std::size_t>(count) * list.recordSize));
            return {worked, ReadRecords(call, list, filled, count)};
        }
        code = filled.code;
    }
    return {std::to_string(code), ""};
}

}  // namespace conformance
