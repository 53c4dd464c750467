// The names of values are the same as in the platform's headers.
#include "bindings/names/enumerations.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace binding {

namespace {

using Enumerators = std::vector<std::pair<std::string, std::int64_t>>;

std::string Content(const std::string& path) {
    std::ifstream file(path);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

/// The enumerations of @p header by name.
std::map<std::string, Enumerators> EnumerationsOf(const std::string& header) {
    const std::string content = Content(std::string(KESTAL_PLATFORM_HEADERS) + "/" + header);
    const std::regex enumeration(R"(enum (\w+) : [\w:]+ \{([^}]*)\})");
    const std::regex enumerator(R"((\w+) = (\w+),)");
    std::map<std::string, Enumerators> found;
    for (std::sregex_iterator one(content.begin(), content.end(), enumeration), end; one != end;
         ++one) {
        const std::string body = (*one)[2];
        for (std::sregex_iterator line(body.begin(), body.end(), enumerator); line != end; ++line) {
            found[(*one)[1]].emplace_back((*line)[1], std::stoll((*line)[2], nullptr, 0));
        }
    }
    return found;
}

/// The longest common beginning of all names that ends with an underscore.
std::string CommonBeginning(const Enumerators& enumerators) {
    std::string common = enumerators.front().first;
    for (const auto& [name, value] : enumerators) {
        while (name.compare(0, common.size(), common) != 0) {
            common.pop_back();
        }
    }
    return common.substr(0, common.rfind('_') + 1);
}

Enumerators NamesIn(Enumeration names) {
    Enumerators found;
    for (const EnumerationName& one : names) {
        found.emplace_back(one.name, one.value);
    }
    return found;
}

Enumerators Shortened(const Enumerators& enumerators) {
    const std::size_t common = CommonBeginning(enumerators).size();
    Enumerators names;
    for (const auto& [name, value] : enumerators) {
        std::string shortened = name.substr(common);
        for (char& letter : shortened) {
            letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
        }
        names.emplace_back(shortened, value);
    }
    return names;
}

void ExpectEachMeansOneValue(Enumeration names) {
    std::set<std::string> seen;
    for (const EnumerationName& one : names) {
        EXPECT_TRUE(seen.insert(one.name).second) << one.name;
        EXPECT_EQ(ValueOf(one.name, names), one.value);
        EXPECT_STREQ(NameOf(one.value, names), one.name);
    }
}

void ExpectNames(const std::map<std::string, Enumerators>& declared,
                 const std::map<std::string, Enumeration>& tables) {
    for (const auto& [name, enumerators] : declared) {
        const auto table = tables.find(name);
        ASSERT_NE(table, tables.end()) << name;
        EXPECT_EQ(NamesIn(table->second), Shortened(enumerators)) << name;
        ExpectEachMeansOneValue(table->second);
    }
    EXPECT_EQ(declared.size(), tables.size());
}

TEST(Enumerations, OfTheSystemInterfaceAreComplete) {
    auto declared = EnumerationsOf("sysint.h");
    // Left out, because it is only used for an argument and never for an answer.
    EXPECT_EQ(declared.erase("sys_wifi_guest_profile_e"), 1U);
    ExpectNames(declared, {{"sys_result_e", kSysResult},
                           {"sys_sim_status_e", kSimStatus},
                           {"sys_technology_e", kTechnology},
                           {"sys_roaming_e", kRoaming},
                           {"sys_5g_type_e", kFiveGType},
                           {"sys_traffic_status_e", kTrafficStatus},
                           {"sys_wan_5g_mode_e", kWanFiveGMode},
                           {"sys_service_status_e", kServiceStatus},
                           {"sys_data_connection_status_e", kDataConnectionStatus},
                           {"sys_account_status_e", kAccountStatus},
                           {"sys_gps_status_e", kGpsStatus},
                           {"sys_connection_kind_e", kConnectionKind},
                           {"sys_battery_detection_e", kBatteryDetection},
                           {"sys_charging_source_e", kChargingSource}});
}

TEST(Enumerations, OfTheWebUiLibraryAreComplete) {
    ExpectNames(EnumerationsOf("webui.h"), {{"webui_status_e", kWebuiStatus}});
}

TEST(Enumerations, OfTheMessageBusAreComplete) {
    ExpectNames(EnumerationsOf("msgbus.h"), {{"msgbus_result_e", kMsgbusResult}});
}

TEST(Enumerations, OfTheNotificationsAreComplete) {
    auto declared = EnumerationsOf("notification.h");
    // Left out, because the values are a position and a bit and not values of a number.
    EXPECT_EQ(declared.erase("ans_notification_flag_e"), 1U);
    declared.erase("ans_notification_list_e");
    ExpectNames(declared, {{"ans_severity_e", kSeverity}});
}

TEST(Enumerations, OfTheCodesOfBindingsAreComplete) {
    const std::string content = Content(KESTAL_CODES);
    const std::regex enumerator(R"(\bk(\w+) = (\d+),)");
    Enumerators declared;
    for (std::sregex_iterator one(content.begin(), content.end(), enumerator), end; one != end;
         ++one) {
        const std::string words =
            std::regex_replace((*one)[1].str(), std::regex("(.)([A-Z])"), "$1_$2");
        declared.emplace_back("CODE_" + words, std::stoll((*one)[2]));
    }
    EXPECT_GE(declared.size(), 7U);
    EXPECT_EQ(NamesIn(kBindingCode), Shortened(declared));
    ExpectEachMeansOneValue(kBindingCode);
}

TEST(Enumerations, AValueWithoutANameHasNone) {
    EXPECT_STREQ(NameOf(7, kSimStatus), "ready");
    EXPECT_EQ(NameOf(8, kSimStatus), nullptr);
    EXPECT_EQ(NameOf(-1, kSimStatus), nullptr);
}

TEST(Enumerations, ANameWithoutAValueHasNone) {
    EXPECT_EQ(ValueOf("ready", kSimStatus), 7);
    EXPECT_EQ(ValueOf("Ready", kSimStatus), std::nullopt);
    EXPECT_EQ(ValueOf("", kSimStatus), std::nullopt);
    EXPECT_EQ(ValueOf("ready", {}), std::nullopt);
}

}  // namespace

}  // namespace binding
