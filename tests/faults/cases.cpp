#include "tests/faults/cases.h"

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>

#include "declared_calls.h"
#include "platform/cgi_helper.h"
#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/faults/expectations.h"

namespace {

constexpr std::array kCodes = {0,
                               1,
                               -1,
                               77,
                               INT_MAX,
                               INT_MIN,
                               static_cast<int>(MSGBUS_BUFFER_NEEDED),
                               static_cast<int>(SYS_ERROR_BUFFER_NEEDED),
                               static_cast<int>(SYS_ERROR_NO_SD_CARD),
                               static_cast<int>(WEBUI_SUCCESS),
                               static_cast<int>(WEBUI_BUFFER_NEEDED)};

constexpr std::array kGarbage = {Garbage::kAllOnes, Garbage::kHighBits, Garbage::kEndlessText,
                                 Garbage::kLargest};

/// The codes that two failing calls return, and what they write.
struct PairWay {
    int codes[2];
    Garbage garbage[2];
};

constexpr PairWay kPairWays[] = {
    {{77, -88}, {Garbage::kNone, Garbage::kNone}},
    {{INT_MIN, INT_MAX}, {Garbage::kAllOnes, Garbage::kLargest}},
    {{static_cast<int>(SYS_ERROR_BUFFER_NEEDED), -88}, {Garbage::kEndlessText, Garbage::kNone}},
};

constexpr std::array kThrown = {Thrown::kBadAlloc, Thrown::kError, Thrown::kNumber};

const DeclaredCall* Declaration(const std::string& call) {
    const auto* const found =
        std::find_if(std::begin(kDeclaredCalls), std::end(kDeclaredCalls),
                     [&](const DeclaredCall& row) { return call == row.name; });
    return found == std::end(kDeclaredCalls) ? nullptr : found;
}

bool MayThrow(const std::string& call) {
    const DeclaredCall* const declaration = Declaration(call);
    return declaration != nullptr && declaration->mayThrow && ReasonNotToFail(call) == nullptr;
}

}  // namespace

int SuccessOf(const std::string& call) {
    return call.starts_with("webui_") ? WEBUI_SUCCESS : 0;
}

bool HasResult(const std::string& call) {
    const DeclaredCall* const declaration = Declaration(call);
    const std::string type = declaration == nullptr ? "" : declaration->type;
    return (type == "int" || type.ends_with("*")) && ReasonNotToFail(call) == nullptr;
}

std::vector<Fault> FaultsOf(const std::string& call, int times) {
    std::vector<Fault> faults;
    if (HasResult(call)) {
        for (const int code : kCodes) {
            if (code != SuccessOf(call)) {
                faults.push_back({call, code});
            }
        }
        for (const Garbage garbage : kGarbage) {
            faults.push_back({call, 77, garbage});
        }
        if (call == "MsgbusHandler::GetData" || call == "sys_getConnectedDeviceList" ||
            call.starts_with("webui_get_common_")) {
            for (const Garbage garbage : kGarbage) {
                faults.push_back({call, static_cast<int>(SYS_ERROR_BUFFER_NEEDED), garbage});
                faults.push_back({call, static_cast<int>(MSGBUS_BUFFER_NEEDED), garbage});
                faults.push_back({call, static_cast<int>(WEBUI_BUFFER_NEEDED), garbage});
            }
        }
        if (times > 1) {
            std::set<int> occurrences = {1, 2, times};
            if (times > 2) {
                occurrences.insert(3);
            }
            for (const int occurrence : occurrences) {
                faults.push_back({call, 77, Garbage::kNone, Thrown::kNothing, occurrence});
                faults.push_back({call, -1, Garbage::kAllOnes, Thrown::kNothing, occurrence});
            }
        }
    }
    if (MayThrow(call)) {
        for (const Thrown thrown : kThrown) {
            faults.push_back({call, 1, Garbage::kNone, thrown});
        }
    }
    return faults;
}

std::vector<std::vector<Fault>> Singles(const std::map<std::string, int>& calls) {
    std::vector<std::vector<Fault>> cases;
    for (const auto& [call, times] : calls) {
        for (const Fault& fault : FaultsOf(call, times)) {
            cases.push_back({fault});
        }
    }
    return cases;
}

std::vector<std::vector<Fault>> Pairs(const std::map<std::string, int>& calls, std::size_t stride) {
    std::vector<std::string> names;
    for (const auto& [call, times] : calls) {
        if (HasResult(call)) {
            names.push_back(call);
        }
    }
    std::vector<std::vector<Fault>> cases;
    std::size_t number = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (std::size_t j = i + 1; j < names.size(); ++j) {
            for (const PairWay& way : kPairWays) {
                if (number++ % stride == 0) {
                    cases.push_back({{names[i], way.codes[0], way.garbage[0]},
                                     {names[j], way.codes[1], way.garbage[1]}});
                }
            }
        }
    }
    return cases;
}

std::vector<std::vector<Fault>> AllAtOnce(const std::map<std::string, int>& calls) {
    std::vector<std::vector<Fault>> cases;
    for (const int code : {1, -77, INT_MAX, INT_MIN}) {
        for (const Garbage garbage : {Garbage::kNone, Garbage::kAllOnes, Garbage::kHighBits,
                                      Garbage::kEndlessText, Garbage::kLargest}) {
            std::vector<Fault> faults;
            for (const auto& [call, times] : calls) {
                if (HasResult(call) && call != "sys_getWebUICarrierEnabled" &&
                    call != "CgiHelper::GetInstance") {
                    faults.push_back({call, code, garbage});
                }
            }
            cases.push_back(faults);
        }
    }
    return cases;
}

std::vector<std::vector<Fault>> Sampled(const std::vector<std::vector<Fault>>& cases,
                                        std::size_t stride) {
    std::vector<std::vector<Fault>> sample;
    for (std::size_t i = 0; i < cases.size(); i += stride) {
        sample.push_back(cases[i]);
    }
    return sample;
}
