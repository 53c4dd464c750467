// platform/auth_session.h.
#include <arpa/inet.h>

#include <algorithm>
#include <stdexcept>

#include "conformance/sections/sections.h"
#include "platform/auth_session.h"

namespace conformance {

namespace {

constexpr int kOnlyAsks = 2;

struct Caller {
    std::string session;
    webui_addr_t address;
    std::string agent;
};

webui_addr_t AddressOf(const std::string& text) {
    webui_addr_t address{};
    for (const int family : {AF_INET, AF_INET6}) {
        if (inet_pton(family, text.c_str(), static_cast<void*>(address.address)) == 1) {
            address.family = static_cast<std::uint32_t>(family);
            return address;
        }
    }
    throw std::invalid_argument("--address: '" + text + "' is no address");
}

int Init(Probe& probe, AuthSession& session, const Caller& caller, const std::string& who) {
    return probe.Code("AuthSession::Init", who, [&] {
        return session.Init(caller.session, caller.address, caller.agent, kOnlyAsks);
    });
}

/// Checks that a caller without a session is refused, and that no result is written.
void ExamineRefused(Probe& probe, AuthSession& session, const Caller& caller,
                    const std::string& who) {
    if (Init(probe, session, caller, who) == 0) {
        probe.Told().Fail("AuthSession::Init", "has a session for a caller with " + who);
        return;
    }
    for (const bool preset : {false, true}) {
        bool loggedOn = preset;
        const int code = probe.Code("AuthSession::LoggedOn", "no session",
                                    [&] { return session.LoggedOn(loggedOn); });
        if (code == 0) {
            probe.Told().Fail("AuthSession::LoggedOn", "succeeds without a session, after " + who);
        } else if (loggedOn != preset) {
            probe.Told().Fail("AuthSession::LoggedOn",
                              "fails with " + std::to_string(code) +
                                  ", but has written to its result, after " + who);
        }
    }
}

Caller WithOtherAddress(Caller caller) {
    constexpr std::size_t kLastOfIpv4 = 3;
    constexpr std::size_t kLastOfIpv6 = 15;
    caller.address.address[caller.address.family == AF_INET ? kLastOfIpv4 : kLastOfIpv6] ^= 1U;
    return caller;
}

Caller WithOtherFamily(Caller caller) {
    caller.address.family = caller.address.family == AF_INET ? AF_INET6 : AF_INET;
    return caller;
}

Caller WithUnknownFamily(Caller caller) {
    caller.address.family = AF_UNIX;
    return caller;
}

Caller WithOtherAgent(Caller caller) {
    caller.agent += " elsewhere";
    return caller;
}

Caller WithOtherSession(Caller caller) {
    caller.session += "0";
    return caller;
}

bool IsLoggedOn(Probe& probe, AuthSession& session) {
    bool loggedOn = false;
    int code = 0;
    probe.Tell(
        "AuthSession::LoggedOn", "", [&] { code = session.LoggedOn(loggedOn); },
        [&] { return std::to_string(code) + (loggedOn ? ", logged on" : ", not logged on"); });
    if (code != 0) {
        probe.Told().Fail("AuthSession::LoggedOn",
                          "fails with " + std::to_string(code) + " after a successful Init");
    }
    return code == 0 && loggedOn;
}

void ExamineLive(Probe& probe, const Caller& caller) {
    AuthSession session;
    if (Init(probe, session, caller, "the session given") != 0) {
        probe.Told().Fail("AuthSession::Init", "refuses the session given with --session");
        return;
    }
    if (!IsLoggedOn(probe, session)) {
        probe.Told().Note("the session given is not logged on");
    }
    // On the same object, whose last Init was successful: it must not remember that success.
    ExamineRefused(probe, session, WithOtherAddress(caller), "another address");
    ExamineRefused(probe, session, WithOtherFamily(caller), "an address of another family");
    ExamineRefused(probe, session, WithUnknownFamily(caller), "an address of no known family");
    ExamineRefused(probe, session, WithOtherAgent(caller), "another user agent");
    ExamineRefused(probe, session, WithOtherSession(caller), "another session identifier");
    if (Init(probe, session, caller, "the session given") != 0) {
        probe.Told().Fail("AuthSession::Init", "refuses its session after it has refused others");
    }
    probe.Keep({"AuthSession::Init", [&probe, caller] {
                    AuthSession again;
                    int code = 0;
                    (void)probe.Make("AuthSession::Init", [&] {
                        code = again.Init(caller.session, caller.address, caller.agent, kOnlyAsks);
                    });
                    return Outcome{std::to_string(code), ""};
                }});
}

}  // namespace

void ExamineSession(Probe& probe, const Options& options) {
    const Caller caller{options.session, AddressOf(options.address), options.agent};
    std::unique_ptr<AuthSession> session;
    probe.Tell(
        "AuthSession::AuthSession", "", [&] { session = std::make_unique<AuthSession>(); },
        [] { return std::string(); });
    for (const char* const identifier : {"", "no such session", "../../etc/passwd"}) {
        const Caller unknown{identifier, caller.address, caller.agent};
        ExamineRefused(probe, *session, unknown, "session " + Quoted(identifier));
    }
    if (options.session.empty()) {
        probe.Told().Note("no session is given (--session), so that none is accepted here");
    } else {
        ExamineLive(probe, caller);
    }
}

}  // namespace conformance
