// Paths as people write them.
#include "bindings/simulator/edit/device_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using json = nlohmann::ordered_json;
using binding::AllPaths;
using binding::FindAt;
using binding::KeyPath;
using binding::ResolvePath;
using ::testing::ElementsAre;

const json& Document() {
    static const json kDocument = json::parse(R"({
        "sys": {"getSIMStatus": 7, "getConnectedDeviceList": [{"connectionKind": 1}]},
        "webui": {"commonFeatures": {"a.b": 1, "a": 2}},
        "msgbus": {"zelt.ans.notifications": [{"id": "dataOff"}], "zelt": []}
    })");
    return kDocument;
}

/// The error message for a path.
std::string Complaint(const std::string& text) {
    try {
        binding::MustBeKnown(Document(), ResolvePath(text, Document()));
        return "";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(DevicePath, ConsistsOfNamesAndPositions) {
    EXPECT_EQ(ResolvePath("sys", Document()), KeyPath{"sys"});
    EXPECT_EQ(ResolvePath("sys.getBatteryStatus.chargePercent", Document()),
              (KeyPath{"sys", "getBatteryStatus", "chargePercent"}));
    EXPECT_EQ(ResolvePath("sys.getConnectedDeviceList[12].connectionKind", Document()),
              (KeyPath{"sys", "getConnectedDeviceList", std::size_t{12}, "connectionKind"}));
    EXPECT_EQ(ResolvePath("sys.a[1][2]", Document()),
              (KeyPath{"sys", "a", std::size_t{1}, std::size_t{2}}));
}

TEST(DevicePath, ANameMayHaveDots) {
    EXPECT_EQ(ResolvePath("msgbus.zelt.ans.notifications[0].id", Document()),
              (KeyPath{"msgbus", "zelt.ans.notifications", std::size_t{0}, "id"}));
    EXPECT_EQ(ResolvePath("msgbus.zelt[0]", Document()),
              (KeyPath{"msgbus", "zelt", std::size_t{0}}));
    EXPECT_EQ(ResolvePath("webui.commonFeatures.a.b", Document()),
              (KeyPath{"webui", "commonFeatures", "a.b"}));
    EXPECT_EQ(ResolvePath("webui.commonFeatures.a", Document()),
              (KeyPath{"webui", "commonFeatures", "a"}));
    EXPECT_EQ(ResolvePath("webui.commonFeatures.ab.c", Document()),
              (KeyPath{"webui", "commonFeatures", "ab", "c"}));
}

TEST(DevicePath, TheRestOfAPathIsTheNameOfANewChannel) {
    EXPECT_EQ(ResolvePath("msgbus.a.b[0].id", Document()),
              (KeyPath{"msgbus", "a.b", std::size_t{0}, "id"}));
    EXPECT_EQ(ResolvePath("msgbus.a.b", json::object()), (KeyPath{"msgbus", "a.b"}));
}

TEST(DevicePath, SysAndWebuiMayBeLeftOut) {
    EXPECT_EQ(ResolvePath("getBatteryStatus.chargePercent", Document()),
              (KeyPath{"sys", "getBatteryStatus", "chargePercent"}));
    EXPECT_EQ(ResolvePath("cellularDataConnect", Document()),
              (KeyPath{"sys", "cellularDataConnect"}));
    EXPECT_EQ(ResolvePath("i18nSettings.language", json::object()),
              (KeyPath{"webui", "i18nSettings", "language"}));
}

TEST(DevicePath, InvalidPathsAreRefused) {
    for (const std::string wrong :
         {"", ".", "sys.", ".sys", "sys..a", "sys.[0]", "[0]", "sys[", "sys[]", "sys[a]", "sys[-1]",
          "sys[0", "sys[0]a", "sys[+1]", "sys[99999999999999999999999]"}) {
        EXPECT_EQ(Complaint(wrong),
                  "'" + wrong +
                      "' is not a path, such as sys.getBatteryStatus.chargePercent "
                      "or sys.getConnectedDeviceList[0]");
    }
}

TEST(DevicePath, NamesThatAreNotUtf8AreRefused) {
    EXPECT_EQ(Complaint("sys.ge\x8c"
                        "BatteryStatus"),
              "a path is written in UTF-8");
}

TEST(DevicePath, AnUnknownCallIsRefusedWithASuggestion) {
    EXPECT_EQ(Complaint("getSimStats"),
              "there is no call 'getSimStats'; did you mean getSIMStatus?");
    EXPECT_EQ(Complaint("i18Settings"),
              "there is no call 'i18Settings'; did you mean i18nSettings?");
    EXPECT_EQ(Complaint("msgbuss.a"), "there is no call 'msgbuss'; did you mean msgbus?");
    EXPECT_EQ(Complaint("quite.another"), "there is no call 'quite'");
}

TEST(DevicePath, IsKnownWhenADocumentMayHaveIt) {
    for (const std::string known :
         {"sys", "msgbus", "sys.getSIMStatus", "sys.getBatteryStatus.chargePercent",
          "sys.cellularDataConnect", "sys.getSIMCarrierGID.0", "webui.uriData.any.address",
          "webui.commonFeatures.any", "msgbus.any",
          "sys.getConnectedDeviceList[0].connectionKind"}) {
        EXPECT_EQ(Complaint(known), "");
    }
    EXPECT_EQ(Complaint("sys.getSIM"),
              "sys.getSIM: expected the name of a call, found an unknown name");
    EXPECT_EQ(Complaint("sys.getBatteryStatus.charge"),
              "sys.getBatteryStatus.charge: expected one of chargePercent, chargingState, "
              "detection, chargingSource, found an unknown name");
    EXPECT_EQ(Complaint("sys.getSIM.more.of.it"),
              "sys.getSIM: expected the name of a call, found an unknown name");
}

TEST(DevicePath, LeadsToAValue) {
    EXPECT_EQ(*FindAt(Document(), {"sys", "getConnectedDeviceList", std::size_t{0}}),
              json::parse(R"({"connectionKind": 1})"));
    EXPECT_EQ(FindAt(Document(), {}), &Document());
    EXPECT_EQ(FindAt(Document(), {"sys", "getGPSStatus"}), nullptr);
    EXPECT_EQ(FindAt(Document(), {"sys", "getSIMStatus", "a"}), nullptr);
    EXPECT_EQ(FindAt(Document(), {"sys", std::size_t{0}}), nullptr);
    EXPECT_EQ(FindAt(Document(), {"sys", "getConnectedDeviceList", std::size_t{1}}), nullptr);
}

TEST(DevicePath, AllCanBeListed) {
    EXPECT_THAT(
        AllPaths(Document()),
        ElementsAre("sys", "sys.getSIMStatus", "sys.getConnectedDeviceList",
                    "sys.getConnectedDeviceList[0]", "sys.getConnectedDeviceList[0].connectionKind",
                    "webui", "webui.commonFeatures", "webui.commonFeatures.a.b",
                    "webui.commonFeatures.a", "msgbus", "msgbus.zelt.ans.notifications",
                    "msgbus.zelt.ans.notifications[0]", "msgbus.zelt.ans.notifications[0].id",
                    "msgbus.zelt"));
}

}  // namespace
