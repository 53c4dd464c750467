// Sources beside the modem, whose daemons on the bus are the test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "bindings/device/codes.h"
#include "tests/unit/bindings/linux/bus/fake_bus.h"
#include "tests/unit/bindings/linux/services/service_test.h"

namespace {

using binding::Device;
using ::testing::Contains;
using ::testing::HasSubstr;

class BoardOnABus : public ServiceTest {
  protected:
    BoardOnABus() : bus(directory / "bus") {
        bus.Listen();
        daemons.emplace_back([this] { bus.Serve(); });
    }

    FakeBus bus;
};

class BoardWithRauc : public BoardOnABus {
  protected:
    static constexpr const char* kRauc = "de.pengutronix.rauc";

    BoardWithRauc() {
        bus.owners[kRauc] = ":1.7";
        Does("idle");
    }

    void Does(const char* operation) {
        bus.properties["/ de.pengutronix.rauc.Installer"] = {
            Property("Operation", "s", operation), Property("LastError", "s", ""),
            Property("Progress", "(isi)", 40, "Installing", 1)};
    }

    bool WaitForUpdate(int status) {
        return WaitFor([status](const Device& now) {
            return now.softwareUpdateStatus.error == 0 &&
                   now.softwareUpdateStatus.value.status == status;
        });
    }
};

TEST_F(BoardWithRauc, UpdateDuringWhichItWasKilledHasFailed) {
    constexpr int kInstalling = 7;
    constexpr int kFailed = 9;
    Does("installing");
    Begin();
    ASSERT_TRUE(WaitForUpdate(kInstalling));
    bus.ChangeOwner(kRauc, "");
    ASSERT_TRUE(WaitFor(
        [](const Device& now) { return now.softwareUpdateStatus.error == binding::kSourceLost; }));
    Does("idle");
    bus.ChangeOwner(kRauc, ":1.8");
    ASSERT_TRUE(WaitFor([](const Device& now) { return now.softwareUpdateStatus.error == 0; }));
    EXPECT_EQ(board->Newest()->softwareUpdateStatus.value.status, kFailed);
}

TEST_F(BoardWithRauc, SlotsThatAreNoneAreLogged) {
    Does("installing");
    bus.methods["/ de.pengutronix.rauc.Installer.GetSlotStatus"] = [](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "a(ss)", 1, "rootfs.0", "2.1");
    };
    Begin();
    bus.ChangeProperties(kRauc, "/", "de.pengutronix.rauc.Installer",
                         {Property("Operation", "s", "idle")});
    EXPECT_TRUE(WaitFor([this](const Device& /*now*/) {
        return testing::Value(Log(), Contains(HasSubstr("GetSlotStatus: the answer is no list")));
    }));
}

class BoardThatShares : public BoardOnABus {
  protected:
    static constexpr const char* kSubscribe =
        "/org/freedesktop/systemd1 org.freedesktop.systemd1.Manager.Subscribe";

    BoardThatShares() {
        bus.owners["org.freedesktop.systemd1"] = ":1.7";
        Is("inactive");
    }

    void Is(const char* state) {
        bus.properties
            ["/org/freedesktop/systemd1/unit/smbd_2eservice "
             "org.freedesktop.systemd1.Unit"] = {Property("ActiveState", "s", state),
                                                 Property("LoadState", "s", "loaded")};
    }
};

TEST_F(BoardThatShares, AsksAgainToBeToldOfChangesAndForWhatItHasMissed) {
    bus.methods[kSubscribe] = Fails("org.freedesktop.DBus.Error.AccessDenied", "not for you");
    Begin();
    ASSERT_TRUE(WaitFor([this](const Device& /*now*/) {
        return std::count(bus.calls.begin(), bus.calls.end(), kSubscribe) >= 2;
    }));
    Is("active");
    bus.methods[kSubscribe] = [](sd_bus_message* call) {
        return sd_bus_reply_method_return(call, "");
    };
    EXPECT_TRUE(WaitFor([](const Device& now) { return now.getSambaEnabled.value == 1; }));
    EXPECT_THAT(Log(), Contains(HasSubstr("the service manager: Subscribe: ")).Times(1));
}

}  // namespace
