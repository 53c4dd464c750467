// The object "sys": what the system-interface SDK answers.
#include <array>
#include <type_traits>

#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "tools/described.h"
#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/record_device.h"
#include "tools/kestal_record/usual_names.h"
#include "tools/sysint_answers.h"

namespace {

/// The answer of a query whose only parameter is its result.
template <typename Meaning, typename T>
Json Answer(const Codes& codes, int (*call)(T*)) {
    T value{};
    const int code = call(&value);
    if (code != codes.success) {
        return FailureOf(codes, code);
    }
    if constexpr (std::is_class_v<Meaning>) {
        return WithoutNames(Described(value, RawText));
    } else {
        return NumberOrName(value, binding::NamesOfMeaning<Meaning>());
    }
}

Json NetworkSelection(const Codes& codes) {
    int allowed = 0;
    int selected = 0;
    int scanStatus = 0;
    const int code = sys_getModemMnsInfo(&allowed, &selected, &scanStatus);
    return code == codes.success ? DescribedSelection({allowed, selected, scanStatus})
                                 : FailureOf(codes, code);
}

Json NrBands(const Codes& codes) {
    int band = 0;
    int second = 0;
    const int code = sys_getCellular5GBand(&band, &second);
    return code == codes.success ? DescribedBands({band, second}) : FailureOf(codes, code);
}

Json GroupIdentifier(const Codes& codes, int index) {
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
    std::uint8_t length = 0;
    const int code = sys_getSIMCarrierGID(gid.data(), &length, static_cast<std::uint8_t>(index));
    if (code != codes.success) {
        return FailureOf(codes, code);
    }
    const auto used = std::span(gid).first(length);
    return Json(std::vector<std::uint8_t>(used.begin(), used.end()));
}

Json GuestProfile(const Codes& codes, int profile) {
    int enabled = 0;
    const int code = sys_getWiFiGuestProfileEnabled(profile, &enabled);
    return code == codes.success ? Json(enabled) : FailureOf(codes, code);
}

Json ConnectedDevices(const Codes& codes) {
    return ListAnswer<sys_connected_device_t, unsigned int>(
        "sys_getConnectedDeviceList", codes, SYS_ERROR_BUFFER_NEEDED, sys_getConnectedDeviceList,
        [](const auto& devices) {
            Json list = Json::array();
            for (const sys_connected_device_t& device : devices) {
                list.push_back(
                    Json::object({{"connectionKind", NumberOrName(device.connectionKind,
                                                                  binding::kConnectionKind)}}));
            }
            return list;
        });
}

Json ByName(const Codes& codes, int (*call)(const char*, int*),
            const std::vector<std::string>& names) {
    return AnswersByName(names, [&](const std::string& name) {
        int value = 0;
        const int code = call(name.c_str(), &value);
        return code == codes.success ? Json(value) : FailureOf(codes, code);
    });
}

}  // namespace

Json RecordSys(const Questions& questions, int initializeCode) {
    const Codes codes = {SYS_SUCCESS, binding::kSysResult, questions.bindingCodes, 0};
    const std::vector<std::string> fields = With(questions.names, kUsualFields);
    const std::vector<std::string> apps = With(questions.names, kUsualPages);
    Json sys = Json::object();
    // Null while it works, because it has no answer; healing it makes it work again.
    sys["sdkInitialize"] = nullptr;
    if (initializeCode != codes.success) {
        sys["sdkInitialize"] = FailureOf(codes, initializeCode);
        sys["sdkInitialize"]["healed"] = nullptr;
    }
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name as text and as function
#define RECORD_QUERY(Type, name, Meaning, field, description) \
    sys[#name] = Answer<Meaning>(codes, sys_##name);
    SYSINT_QUERIES(RECORD_QUERY)
#undef RECORD_QUERY
    sys["getModemMnsInfo"] = NetworkSelection(codes);
    sys["getCellular5GBand"] = NrBands(codes);
    sys["getConnectedDeviceList"] = ConnectedDevices(codes);
    // A SIM has two group identifiers.
    sys["getSIMCarrierGID"] = AnswersByName(
        std::vector<int>{0, 1}, [&](int index) { return GroupIdentifier(codes, index); });
    sys["getWiFiGuestProfileEnabled"] =
        AnswersByName(std::vector<int>{SYS_WIFI_GUEST_2_4_GHZ, SYS_WIFI_GUEST_5_GHZ},
                      [&](int profile) { return GuestProfile(codes, profile); });
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name as text and as function
#define RECORD_NAMED(name, Subject, field, description) \
    sys[#name] = ByName(codes, sys_##name, k##Subject##s);
    const std::vector<std::string>& kFields = fields;
    const std::vector<std::string>& kApps = apps;
    SYSINT_NAMED_QUERIES(RECORD_NAMED)
#undef RECORD_NAMED
    return sys;
}
