// Connecting and disconnecting change the device document, and nothing else in it.
#include <sys/stat.h>

#include <thread>

#include "bindings/device/codes.h"
#include "platform/sysint.h"
#include "tests/support/fake_device_clock.h"
#include "tests/support/scratch.h"

namespace {

using namespace std::chrono_literals;

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

class SlowDataCall : public DataCall {
  protected:
    void Document(const std::string& status) const {
        DataCall::Document(R"({"sys": {"cellularDataConnect": {"takes": 4.5},)"
                           R"("cellularDataDisconnect": {"takes": 2},)"
                           R"("getCellularDataConnectionStatus": )" +
                           status + "}}");
    }

    /// What the document says about the status.
    std::string Entry() const {
        const std::string text = ReadFile(device);
        const std::string name = R"("getCellularDataConnectionStatus": )";
        const std::size_t begin = text.find(name) + name.size();
        return text.substr(begin, text.size() - 2 - begin);
    }

    FakeDeviceClock clock;
};

TEST_F(SlowDataCall, PassesThroughConnectingAndDisconnecting) {
    Document("0");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(Entry(), R"({"now": 4, "next": 2, "at": "2026-11-21T12:00:04.500Z"})");
    clock.Pass(4499ms);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    clock.Pass(1ms);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_DISCONNECTING);
    clock.Pass(2s);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
}

TEST_F(SlowDataCall, DoesNotBeginAgainWhenItIsConnectingOrConnected) {
    Document("0");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    const std::string connecting = Entry();
    clock.Pass(4s);
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), connecting);
    clock.Pass(1s);
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), "2");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), "2");
}

TEST_F(SlowDataCall, IsReplacedByTheOtherAction) {
    Document("0");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    clock.Pass(1s);
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(Entry(), R"({"now": 5, "next": 0, "at": "2026-11-21T12:00:03.000Z"})");
    clock.Pass(4s);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_READY);
}

TEST_F(SlowDataCall, IsReplacedByAStatusThatSomebodySets) {
    Document("0");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    Document("7");
    clock.Pass(5s);
    EXPECT_EQ(Status(), 7);
}

TEST_F(SlowDataCall, ChangesTheAnswerBehindAFaultOfTheStatus) {
    Document(R"({"error": 5, "times": 1, "healed": 0})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    int status = -1;
    EXPECT_EQ(sys_getCellularDataConnectionStatus(&status), 5);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    clock.Pass(5s);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTED);
}

TEST_F(SlowDataCall, WritesNamesWhereTheDocumentHasOne) {
    Document("\"dormant\"");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Status(), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(Entry(),
              R"({"now": "connecting", "next": "connected", "at": "2026-11-21T12:00:04.500Z"})");
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(Entry(),
              R"({"now": "disconnecting", "next": "ready", "at": "2026-11-21T12:00:02.000Z"})");
    clock.Pass(2s);
    EXPECT_EQ(sys_cellularDataDisconnect(0), 0);
    EXPECT_EQ(Entry(), "\"ready\"");
}

TEST_F(SlowDataCall, WritesNamesBehindAFaultOfTheStatus) {
    Document(R"({"error": "not_answered", "times": 1, "healed": "ready"})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), R"({"error": "not_answered", "times": 1, "healed": )"
                       R"({"now": "connecting", "next": "connected", )"
                       R"("at": "2026-11-21T12:00:04.500Z"}})");
    clock.Pass(5s);
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), R"({"error": "not_answered", "times": 1, "healed": "connected"})");
}

TEST_F(SlowDataCall, DoesNotChangeAStatusThatFails) {
    Document(R"({"error": 5, "healed": 0})");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    EXPECT_EQ(Entry(), R"({"error": 5, "healed": 0})");
}

TEST_F(DataCall, LeavesNoOtherFileBehind) {
    Document("{}");
    EXPECT_EQ(sys_cellularDataConnect(0), 0);
    std::filesystem::remove(device);
    std::filesystem::remove(directory / "log");
    EXPECT_TRUE(std::filesystem::is_empty(directory));
}

}  // namespace
