#include "tools/sysint_answers.h"

#include <cstring>
#include <functional>
#include <map>

Json DescribedSelection(const std::array<int, 3>& info) {
    return Json::object({{"allowed", info[0]}, {"selected", info[1]}, {"scanStatus", info[2]}});
}

Json DescribedBands(const std::array<int, 2>& bands) {
    return Json::object({{"band", bands[0]}, {"second", bands[1]}});
}

namespace {

using Bytes = std::span<const std::byte>;
using Description = std::function<Json(Bytes)>;

/// Describes a record of the type @p T with @p describe.
template <typename T, typename Describe>
Description OfRecord(Describe describe) {
    return [describe](Bytes answer) {
        T value{};
        if (answer.size() != sizeof value) {
            return Json();
        }
        std::memcpy(&value, answer.data(), sizeof value);
        return Json(describe(value));
    };
}

Json DescribedDevices(Bytes answer) {
    Json list = Json::array();
    for (; answer.size() >= sizeof(sys_connected_device_t);
         answer = answer.subspan(sizeof(sys_connected_device_t))) {
        sys_connected_device_t device{};
        std::memcpy(&device, answer.data(), sizeof device);
        list.push_back(Described(device));
    }
    return list;
}

Json DescribedGroupId(Bytes answer) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(answer.data());
    return Json::object({{"gid", HexText(std::span(bytes, answer.size()))}});
}

const std::map<std::string_view, Description>& Descriptions() {
    static const std::map<std::string_view, Description> kAll = {
// NOLINTBEGIN(cppcoreguidelines-macro-usage): the name as text
#define QUERY_DESCRIPTION(Type, name, Meaning, field, description) \
    {"sys_" #name, OfRecord<Type>(As<Meaning>(field))},
        SYSINT_QUERIES(QUERY_DESCRIPTION)
#undef QUERY_DESCRIPTION
#define NAMED_DESCRIPTION(name, Subject, field, description) \
    {"sys_" #name, OfRecord<int>(As<int>(field))},
            SYSINT_NAMED_QUERIES(NAMED_DESCRIPTION)
#undef NAMED_DESCRIPTION
        // NOLINTEND(cppcoreguidelines-macro-usage)
        {"sys_getModemMnsInfo", OfRecord<std::array<int, 3>>(DescribedSelection)},
        {"sys_getCellular5GBand", OfRecord<std::array<int, 2>>(DescribedBands)},
        {"sys_getWiFiGuestProfileEnabled", OfRecord<int>(As<int>("enabled"))},
        {"sys_getSIMCarrierGID", DescribedGroupId},
        {"sys_getConnectedDeviceList", DescribedDevices},
    };
    return kAll;
}

}  // namespace

Json DescribedSysAnswer(std::string_view call, Bytes answer) {
    const auto found = Descriptions().find(call);
    return found == Descriptions().end() ? Json() : found->second(answer);
}
