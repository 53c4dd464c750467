// Connecting and disconnecting change the device document, and nothing else in it.
#include <sys/stat.h>

#include <thread>

#include "bindings/device/codes.h"
#include "platform/sysint.h"
#include "tests/support/scratch.h"

namespace {

class DataCall : public SimulatedDevice {
  protected:
    static int Status() {
        int status = -1;
        EXPECT_EQ(sys_getCellularDataConnectionStatus(&status), 0);
        return status;
    }
};

TEST_F(DataCall, ConnectsAndDisconnects) {
    Document(R"({"sys": {"getCellularDataConnectionStatus": 1}})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Status(), 2);
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(Status(), 0);
}

TEST_F(DataCall, LosesNothingOfTheDocument) {
    const auto document = [](const std::string& status) {
        return "{\n  \"msgbus\": {\"z\": [ ], \"a\" : [{\"id\":\t\"\\u00e9\"}]},\n"
               "  \"sys\": { \"getWatchdogInterval\" : 60,\n"
               "    \"getCellularDataConnectionStatus\":" +
               status +
               ",\n    \"getSDCardInfo\": {\"totalCapacity\": 18446744073709551615}}\n}\n\n";
    };
    Document(document("7"));
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(ReadFile(device), document("2"));
}

TEST_F(DataCall, WritesANameWhereTheDocumentHasOne) {
    Document(R"({"sys": {"getCellularDataConnectionStatus": "dormant"}})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(ReadFile(device), R"({"sys": {"getCellularDataConnectionStatus": "connected"}})");
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(ReadFile(device), R"({"sys": {"getCellularDataConnectionStatus": "ready"}})");
}

TEST_F(DataCall, AddsTheStatusToADocumentWithoutOne) {
    Document("{\n    \"sys\": {\n        \"getSIMStatus\": 7\n    }\n}\n");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(ReadFile(device),
              "{\n    \"sys\": {\n        \"getCellularDataConnectionStatus\": 2,\n"
              "        \"getSIMStatus\": 7\n    }\n}\n");
}

TEST_F(DataCall, DoesNotChangeAStatusThatFails) {
    const std::string document = R"({"sys": {"getCellularDataConnectionStatus": {"error": 4}}})";
    Document(document);
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(ReadFile(device), document);
}

TEST_F(DataCall, FailsAsTheDocumentSaysAndChangesNothing) {
    const std::string document = R"({"sys": {"cellularDataConnect": {"error": 31},
        "cellularDataDisconnect": {"error": 32}, "getCellularDataConnectionStatus": 1}})";
    Document(document);
    EXPECT_EQ(sys_cellularDataConnect(0), 31);
    EXPECT_EQ(sys_cellularDataDisconnect(0), 32);
    EXPECT_EQ(ReadFile(device), document);
}

TEST_F(DataCall, DoesNotChangeTheSnapshotOfItsOwnSession) {
    Document(R"({"sys": {"getCellularDataConnectionStatus": 0}})");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Status(), 0);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(Status(), 2);
}

TEST_F(DataCall, ChangesTheFileOfNowAndNotThatOfTheSnapshot) {
    Document(R"({"sys": {"getSIMStatus": 1}})");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    Document(R"({"sys": {"getSIMStatus": 2}})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(ReadFile(device),
              R"({"sys": {"getCellularDataConnectionStatus": 2,"getSIMStatus": 2}})");
}

TEST_F(DataCall, DoesNotOverwriteADamagedDocument) {
    Document("{}");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    for (const std::string damaged : {"{\"sys\": {\"getSIMStatus\": \"x\"}}", "{", ""}) {
        Document(damaged);
        EXPECT_EQ(sys_cellularDataConnect(0), binding::kNotChanged);
        EXPECT_EQ(ReadFile(device), damaged);
    }
    EXPECT_EQ(Log().size(), 3U);
}

TEST_F(DataCall, DoesNotBringAVanishedDocumentBack) {
    Document("{}");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    std::filesystem::remove(device);
    EXPECT_EQ(sys_cellularDataConnect(0), binding::kNotChanged);
    EXPECT_FALSE(std::filesystem::exists(device));
}

TEST_F(DataCall, LeavesNoOtherFileBehind) {
    Document("{}");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    std::filesystem::remove(device);
    std::filesystem::remove(directory / "log");
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

}  // namespace
