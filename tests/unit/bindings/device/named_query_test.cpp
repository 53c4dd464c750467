// What the carrier allows in the web UI, asked for by the name of a field or an application.
#include <array>
#include <ostream>
#include <string>

#include "bindings/device/codes.h"
#include "platform/sysint.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/document/document_reading.h"

namespace {

using binding::kNoDevice;
using binding::kNotAnswered;

struct NamedQuery {
    const char* name;
    int (*call)(const char* name, int* value);
};

std::ostream& operator<<(std::ostream& out, const NamedQuery& query) {
    return out << query.name;
}

constexpr std::array<NamedQuery, 4> kQueries = {{
    {"getUIFieldShowEnabled", sys_getUIFieldShowEnabled},
    {"getUIFieldLockEnabled", sys_getUIFieldLockEnabled},
    {"getUIAppDisplayEnabled", sys_getUIAppDisplayEnabled},
    {"getUIAppWriteEnabled", sys_getUIAppWriteEnabled},
}};

class NamedQueries : public SimulatedDevice, public ::testing::WithParamInterface<NamedQuery> {
  protected:
    void Entry(const std::string& value) const {
        Document(std::string("{\"sys\": {\"") + GetParam().name + "\": " + value + "}}");
    }

    static void ExpectAnswer(const char* name, int code, int value) {
        int result = 9;
        EXPECT_EQ(GetParam().call(name, &result), code);
        EXPECT_EQ(result, value);
    }
};

INSTANTIATE_TEST_SUITE_P(Sysint, NamedQueries, ::testing::ValuesIn(kQueries),
                         [](const auto& query) { return query.param.name; });

TEST_P(NamedQueries, EachNameHasAValueOfItsOwn) {
    Entry(R"({"ssid": 1, "apn": -2147483648, "": 3})");
    ExpectAnswer("ssid", SYS_SUCCESS, 1);
    ExpectAnswer("apn", SYS_SUCCESS, -2147483647 - 1);
    ExpectAnswer("", SYS_SUCCESS, 3);
}

TEST_P(NamedQueries, OneNameFailsAloneAndWritesNothing) {
    Entry(R"({"ssid": {"error": 42}, "apn": 0})");
    ExpectAnswer("ssid", 42, 9);
    ExpectAnswer("apn", SYS_SUCCESS, 0);
}

TEST_P(NamedQueries, EveryNameFailsTogether) {
    Entry(R"({"error": 43})");
    ExpectAnswer("ssid", 43, 9);
    ExpectAnswer("error", 43, 9);
    ExpectAnswer(nullptr, 43, 9);
}

TEST_P(NamedQueries, UnknownNamesAreNotSimulated) {
    Entry(R"({"ssid": 1})");
    for (const char* name : {"SSID", "ssi", "ssid2", ""}) {
        ExpectAnswer(name, kNotAnswered, 9);
    }
    Entry("{}");
    ExpectAnswer("ssid", kNotAnswered, 9);
    Document("{}");
    ExpectAnswer("ssid", kNotAnswered, 9);
}

TEST_P(NamedQueries, NoNameAtAllIsNotSimulated) {
    Entry(R"({"ssid": 1, "": 2})");
    ExpectAnswer(nullptr, kNotAnswered, 9);
    Document("{}");
    ExpectAnswer(nullptr, kNotAnswered, 9);
}

TEST_P(NamedQueries, FailWithoutADocument) {
    ExpectAnswer("ssid", kNoDevice, 9);
}

TEST_P(NamedQueries, AreAnObjectOfIntegers) {
    const std::string name = GetParam().name;
    EXPECT_EQ(SysComplaint(name, "1"),
              "device.json:3: sys." + name + ": expected an object or {\"error\": N}, found 1");
    EXPECT_EQ(SysComplaint(name, "[]"), "device.json:3: sys." + name +
                                            ": expected an object or {\"error\": N}, found a list");
    const std::string expected =
        "device.json:4: sys." + name + ".ssid: expected a 32-bit integer or {\"error\": N}, found ";
    for (const auto& [value, found] : {std::pair("true", "true"), std::pair("\"1\"", "a text"),
                                       std::pair("2147483648", "2147483648"),
                                       std::pair("{}", "an object"), std::pair("null", "null")}) {
        EXPECT_EQ(SysComplaint(name, "{\n\"ssid\": " + std::string(value) + "}"), expected + found);
    }
    EXPECT_EQ(SysComplaint(name, "{\"error\": 5, \"ssid\": 1}"),
              "device.json:3: sys." + name +
                  ".ssid: expected one of error, times, probability, seed, delay, hang, since, "
                  "healed, found an unknown name");
    EXPECT_EQ(SysComplaint(name, "{\"ssid\": {\"error\": 0}}"),
              "device.json:3: sys." + name +
                  ".ssid.error: expected a 32-bit integer other than 0 and 983040, found 0");
}

}  // namespace
