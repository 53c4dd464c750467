#include "tools/msgbus_commands.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string>

#include "platform/fixed_text.h"
#include "platform/msgbus.h"
#include "platform/notification.h"
#include "tools/json_output.h"

namespace {

using Block = std::vector<std::uint8_t>;

void CheckBus(const std::string& call, int code) {
    Check("MsgbusHandler::" + call, code, MSGBUS_SUCCESS);
}

/// A handler that is joined to the bus as long as the object exists.
class BusVisit {
  public:
    BusVisit() { CheckBus("Initialize", bus.Initialize()); }
    ~BusVisit() {
        if (joined) {
            (void)bus.Uninitialize();
        }
    }
    BusVisit(const BusVisit&) = delete;
    BusVisit& operator=(const BusVisit&) = delete;

    int GetData(const std::string& channel, void* buffer, unsigned int& size) {
        return bus.GetData(channel, buffer, size);
    }

    void End() {
        joined = false;
        CheckBus("Uninitialize", bus.Uninitialize());
    }

  private:
    MsgbusHandler bus{nullptr};
    bool joined = true;
};

Block ReadChannel(BusVisit& bus, const std::string& channel) {
    // The block may grow between two calls, so they are repeated, but not for ever.
    constexpr int kTries = 5;
    Block block;
    unsigned int size = 0;
    int code = bus.GetData(channel, nullptr, size);
    for (int attempt = 0; attempt < kTries && code == MSGBUS_BUFFER_NEEDED; ++attempt) {
        // The call needs a buffer even for an empty block.
        size = std::max(size, 1U);
        block.assign(size, 0);
        code = bus.GetData(channel, block.data(), size);
    }
    CheckBus("GetData", code);
    block.resize(std::min<std::size_t>(block.size(), size));
    return block;
}

Json Describe(const AnsNotificationRecord& record) {
    return Json::object({{"category", FixedText(record.category)},
                         {"id", FixedText(record.id)},
                         {"labelId", FixedText(record.labelId)},
                         {"titleId", FixedText(record.titleId)},
                         {"textId", FixedText(record.textId)},
                         {"severity", Named(record.severity, binding::kSeverity)},
                         {"flags", record.flags},
                         {"active", (record.flags & ANS_NOTIFICATION_ACTIVE) != 0}});
}

/// What is wrong with a block that announces @p count records and holds @p whole complete ones,
/// followed by @p rest bytes; empty when nothing is wrong.
std::string Fault(std::int64_t count, std::size_t whole, std::size_t rest) {
    if (count < 0) {
        return "the count is negative";
    }
    if (static_cast<std::size_t>(count) > whole) {
        return "only " + std::to_string(whole) + " of " + std::to_string(count) +
               " records are complete";
    }
    if (rest > 0) {
        return std::to_string(rest) + " bytes follow the last record";
    }
    return {};
}

Json NotificationList(std::span<const std::uint8_t> block) {
    constexpr std::size_t kHead = ANS_NOTIFICATION_LIST_RECORDS;
    constexpr std::size_t kRecord = sizeof(AnsNotificationRecord);
    if (block.size() < kHead) {
        return Json::object({{"malformed", "the block is too short for a count"},
                             {"notifications", Json::array()}});
    }
    std::int32_t count = 0;
    std::memcpy(&count, block.data(), sizeof(count));
    const std::span<const std::uint8_t> records = block.subspan(kHead);
    const std::size_t whole =
        std::min(static_cast<std::size_t>(std::max(count, 0)), records.size() / kRecord);

    Json list = Json::array();
    for (std::size_t index = 0; index < whole; ++index) {
        AnsNotificationRecord record{};
        std::memcpy(&record, records.subspan(index * kRecord, kRecord).data(), kRecord);
        list.push_back(Describe(record));
    }
    Json answer = Json::object({{"count", count}});
    const std::string fault = Fault(count, whole, records.size() - whole * kRecord);
    if (!fault.empty()) {
        answer["malformed"] = fault;
    }
    answer["notifications"] = list;
    return answer;
}

Json Bytes(std::span<const std::uint8_t> block) {
    return Json::object({{"size", block.size()}, {"bytes", HexText(block)}});
}

void MsgBusGet(const Arguments& arguments, std::ostream& out) {
    const std::string channel = arguments.Text(0);
    BusVisit bus;
    const Block block = ReadChannel(bus, channel);
    if (arguments.Given("--raw")) {
        std::copy(block.begin(), block.end(), std::ostreambuf_iterator<char>(out));
    } else {
        WriteJson(out,
                  channel == ANS_NOTIFICATION_CHANNEL ? NotificationList(block) : Bytes(block));
    }
    bus.End();
}

}  // namespace

Json PublishedNotifications() {
    BusVisit bus;
    const Block block = ReadChannel(bus, ANS_NOTIFICATION_CHANNEL);
    bus.End();
    return NotificationList(block);
}

Tool MsgbusTool(binding::Enumeration bindingCodes) {
    static const std::string kChannel =
        std::string("Name of the channel, such as ") + ANS_NOTIFICATION_CHANNEL;
    return {.name = "msgbus_cli",
            .description = "Prints what has been published on the device's message bus.",
            .codes = binding::kMsgbusResult,
            .commands = {{.names = {"MsgBusGet"},
                          .description = "What was last published on a channel",
                          .parameters = {{"CHANNEL", kChannel.c_str()}},
                          .run = MsgBusGet,
                          .options = {{"--raw", "Write the bytes as they are"}}}},
            .bindingCodes = bindingCodes};
}
