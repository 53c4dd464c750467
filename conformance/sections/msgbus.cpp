// platform/msgbus.h, and the block that platform/notification.h describes.
#include "platform/msgbus.h"

#include <cstring>
#include <memory>

#include "conformance/guarded_buffer.h"
#include "conformance/list.h"
#include "conformance/object.h"
#include "conformance/sections/sections.h"
#include "platform/notification.h"

namespace conformance {

namespace {

constexpr const char* kClient = "MsgbusHandler";
constexpr const char* kInitialize = "MsgbusHandler::Initialize";
constexpr const char* kUninitialize = "MsgbusHandler::Uninitialize";
constexpr const char* kGetData = "MsgbusHandler::GetData";

/// The channel as a list of bytes that @p client reads. It is not for two threads, because a client
/// belongs to one thread.
List Channel(const std::shared_ptr<MsgbusHandler>& client, const std::string& channel) {
    List list;
    list.call = kGetData;
    list.arguments = Quoted(channel);
    list.success = MSGBUS_SUCCESS;
    list.bufferNeeded = MSGBUS_BUFFER_NEEDED;
    list.fields = FieldsInBytes<std::byte>;
    list.isForThreads = false;
    list.make = [client, channel](void* buffer, void* size) {
        return client->GetData(channel, buffer, *static_cast<unsigned int*>(size));
    };
    return list;
}

/// The count at the beginning of @p block, which is long enough.
std::int32_t CountIn(std::span<const std::byte> block) {
    std::int32_t count = 0;
    std::memcpy(&count, block.data(), sizeof(count));
    return count;
}

void CheckBlock(Report& report, std::span<const std::byte> block) {
    const auto fail = [&](const std::string& reason) {
        report.Fail(kGetData, std::string(ANS_NOTIFICATION_CHANNEL) + ": " + reason);
    };
    const std::string size = Counted(static_cast<std::int64_t>(block.size()), "byte");
    if (block.size() < ANS_NOTIFICATION_LIST_RECORDS) {
        fail("the block of " + size + " has no count");
        return;
    }
    const std::int32_t count = CountIn(block);
    constexpr std::size_t kRecordSize = sizeof(AnsNotificationRecord);
    const std::size_t records = block.size() - ANS_NOTIFICATION_LIST_RECORDS;
    if (count < 0 || records != static_cast<std::size_t>(count) * kRecordSize) {
        fail("the block of " + size + " is not that of " + Counted(count, "record"));
        return;
    }
    for (std::int32_t index = 0; index < count; ++index) {
        const auto record = block.subspan(
            ANS_NOTIFICATION_LIST_RECORDS + static_cast<std::size_t>(index) * kRecordSize,
            kRecordSize);
        for (const Field& field : FieldsInBytes<AnsNotificationRecord>(record)) {
            if (const std::string problem = field.Problem(record); !problem.empty()) {
                fail("record " + std::to_string(index) + ": " + problem);
            }
        }
    }
}

List Notifications(Report& report, const std::shared_ptr<MsgbusHandler>& client) {
    List list = Channel(client, ANS_NOTIFICATION_CHANNEL);
    list.check = [&report](std::span<const std::byte> block) { CheckBlock(report, block); };
    return list;
}

/// Checks that a client that is not on the bus gets nothing.
void ExamineOutside(Probe& probe, MsgbusHandler& client, const std::string& when) {
    GuardedBuffer buffer(64, GuardedBuffer::kFill);
    auto size = static_cast<unsigned int>(buffer.Bytes().size());
    const int code = probe.Code(kGetData, when, [&] {
        return client.GetData(ANS_NOTIFICATION_CHANNEL, buffer.Data(), size);
    });
    if (code == MSGBUS_SUCCESS || code == MSGBUS_BUFFER_NEEDED) {
        probe.Told().Fail(kGetData, "answers a client " + when);
    } else if (!buffer.IsUntouched() || size != buffer.Bytes().size()) {
        probe.Told().Fail(
            kGetData, "fails for a client " + when + ", but has written to its buffer or its size");
    }
}

void ExamineUnknownChannel(Probe& probe, const std::shared_ptr<MsgbusHandler>& client) {
    const ListContents unknown = Examine(probe, Channel(client, "zelt.conformance.unknown"));
    if (unknown.code == MSGBUS_SUCCESS || unknown.code == MSGBUS_BUFFER_NEEDED) {
        probe.Told().Fail(kGetData, "answers for a channel on which nobody has published");
    }
}

/// Reads the notifications as a request of the service does, with a new client.
Outcome ReadNotifications(Probe& probe) {
    const auto client = MakeObject<MsgbusHandler>(probe, kClient, nullptr);
    if (client == nullptr) {
        return {"no client", ""};
    }
    int joined = 0;
    int left = 0;
    (void)probe.Make(kInitialize, [&] { joined = client->Initialize(); });
    Outcome outcome = Read(probe, Notifications(probe.Told(), client));
    (void)probe.Make(kUninitialize, [&] { left = client->Uninitialize(); });
    outcome.code = std::to_string(joined) + ", " + outcome.code + ", " + std::to_string(left);
    return outcome;
}

}  // namespace

void ExamineMsgbus(Probe& probe, const Options& /*options*/) {
    const auto client = TellObject<MsgbusHandler>(probe, kClient, "no callback", nullptr);
    const auto second = TellObject<MsgbusHandler>(probe, kClient, "no callback", nullptr);
    if (client == nullptr || second == nullptr) {
        for (const char* const call : {kInitialize, kGetData, kUninitialize}) {
            probe.Skip(call, "there is no client");
        }
        return;
    }
    ExamineOutside(probe, *client, "that has not joined");
    if (probe.Code(kInitialize, "", [&] { return client->Initialize(); }) == MSGBUS_SUCCESS) {
        const ListContents list = Examine(probe, Notifications(probe.Told(), client));
        if (list.bytes.size() >= ANS_NOTIFICATION_LIST_RECORDS) {
            probe.Told().Note(std::string(ANS_NOTIFICATION_CHANNEL) + ": " +
                              Counted(CountIn(list.bytes), "notification"));
        }
        ExamineUnknownChannel(probe, client);
        probe.Keep({kGetData, [&probe] { return ReadNotifications(probe); }});
    }
    (void)probe.Code(kInitialize, "", [&] { return second->Initialize(); });
    for (MsgbusHandler* const leaving : {second.get(), client.get()}) {
        (void)probe.Code(kUninitialize, "", [&] { return leaving->Uninitialize(); });
        ExamineOutside(probe, *leaving, "that has left");
    }
}

}  // namespace conformance
