// The watchdog sends its messages to the service manager if there is one, and to the log otherwise.
#include "platform/watchdog.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Watchdog : public SimulatedDevice {};

/// The service manager's end of the socket; @p name is the value of NOTIFY_SOCKET.
class ServiceManager {
  public:
    explicit ServiceManager(const std::string& name)
        : receiver(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path, sizeof(address.sun_path) - 1);
        if (name.front() == '@') {
            address.sun_path[0] = '\0';
        }
        EXPECT_EQ(bind(receiver, reinterpret_cast<const sockaddr*>(&address),
                       static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size())),
                  0);
    }
    ~ServiceManager() { (void)close(receiver); }
    ServiceManager(const ServiceManager&) = delete;
    ServiceManager& operator=(const ServiceManager&) = delete;

    /// The next message; empty when there is none.
    std::string Next() const {
        std::array<char, 512> bytes{};
        const ssize_t size = recv(receiver, bytes.data(), bytes.size(), MSG_DONTWAIT);
        return size < 0 ? "" : std::string(bytes.data(), static_cast<std::size_t>(size));
    }

  private:
    int receiver;
};

void ExpectConversation(const ServiceManager& manager) {
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_REGISTER), 0);
    EXPECT_EQ(manager.Next(), "READY=1\nSTATUS=kestal.cgi registered");
    EXPECT_EQ(watchdog_application_send_keep_alive("kestal.cgi"), 0);
    EXPECT_EQ(manager.Next(), "WATCHDOG=1");
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_UNREGISTER), 0);
    EXPECT_EQ(manager.Next(), "STOPPING=1");
    EXPECT_EQ(manager.Next(), "");
}

TEST_F(Watchdog, NotifiesTheServiceManagerAtAPath) {
    const std::string name = directory / "notify";
    const ServiceManager manager(name);
    environment.Set("NOTIFY_SOCKET", name);
    ExpectConversation(manager);
    EXPECT_TRUE(Log().empty());
}

TEST_F(Watchdog, NotifiesTheServiceManagerAtAnAbstractAddress) {
    const std::string name = "@" + directory.string();
    const ServiceManager manager(name);
    environment.Set("NOTIFY_SOCKET", name);
    ExpectConversation(manager);
    EXPECT_TRUE(Log().empty());
}

TEST_F(Watchdog, FailuresAreReportedAndLogged) {
    environment.Set("NOTIFY_SOCKET", directory / "nobody");
    EXPECT_EQ(watchdog_application_send_keep_alive("kestal.cgi"), ENOENT);
    environment.Set("NOTIFY_SOCKET", "relative");
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_REGISTER), EINVAL);
    environment.Set("NOTIFY_SOCKET", "/" + std::string(200, 'x'));
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_UNREGISTER), ENAMETOOLONG);
    EXPECT_THAT(Log(),
                ElementsAre(HasSubstr("[BINDING]:[ERROR] - watchdog: WATCHDOG=1 not delivered"),
                            HasSubstr("READY=1"), HasSubstr("STOPPING=1 not delivered")));
}

TEST_F(Watchdog, DoesNotWaitForABusyServiceManager) {
    const std::string name = directory / "notify";
    const ServiceManager manager(name);
    environment.Set("NOTIFY_SOCKET", name);
    int result = 0;
    while (result == 0) {
        result = watchdog_application_send_keep_alive("kestal.cgi");
    }
    EXPECT_EQ(result, EAGAIN);
}

TEST_F(Watchdog, IsVisibleInTheLogWithoutAServiceManager) {
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_REGISTER), 0);
    EXPECT_EQ(watchdog_application_send_keep_alive("kestal.cgi"), 0);
    EXPECT_EQ(watchdog_application_register("kestal.cgi", WATCHDOG_UNREGISTER), 0);
    EXPECT_THAT(Log(), ElementsAre("[BINDING]:[NOTICE] - watchdog: kestal.cgi registered",
                                   "[BINDING]:[NOTICE] - watchdog: keep-alive from kestal.cgi",
                                   "[BINDING]:[NOTICE] - watchdog: kestal.cgi unregistered"));
}

}  // namespace
