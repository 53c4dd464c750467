// platform/auth_session.h.
#include <arpa/inet.h>

#include <algorithm>
#include <stdexcept>

#include "conformance/object.h"
#include "conformance/sections/sections.h"
#include "platform/auth_session.h"

namespace conformance {

namespace {

constexpr const char* kSession = "AuthSession";
constexpr const char* kInit = "AuthSession::Init";
constexpr const char* kLoggedOn = "AuthSession::LoggedOn";
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
    return probe.Code(kInit, who, [&] {
        return session.Init(caller.session, caller.address, caller.agent, kOnlyAsks);
    });
}

/// Checks that a caller without a session is refused. Whether such a session is logged on may not
/// be asked.
void ExamineRefused(Probe& probe, const Caller& caller, const std::string& who) {
    const auto session = MakeObject<AuthSession>(probe, kSession);
    if (session != nullptr && Init(probe, *session, caller, who) == 0) {
        probe.Told().Fail(kInit, "has a session for a caller with " + who);
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

Caller WithOtherAgent(Caller caller) {
    caller.agent += " elsewhere";
    return caller;
}

Caller WithOtherSession(Caller caller) {
    caller.session += "0";
    return caller;
}

/// Asks twice, with results of different content.
void ExamineLoggedOn(Probe& probe, AuthSession& session) {
    Report& report = probe.Told();
    const auto ask = [&](bool preset) {
        bool loggedOn = preset;
        int code = 0;
        probe.Tell(
            kLoggedOn, "", [&] { code = session.LoggedOn(loggedOn); },
            [&] { return std::to_string(code) + (loggedOn ? ", logged on" : ", not logged on"); });
        if (code != 0) {
            report.Fail(kLoggedOn,
                        "fails with " + std::to_string(code) + " after a successful Init");
            if (loggedOn != preset) {
                report.Fail(kLoggedOn, "fails, but has written to its result");
            }
        }
        return loggedOn;
    };
    const bool first = ask(false);
    if (ask(true) != first) {
        report.Fail(kLoggedOn, "succeeds, but has not written its result");
    } else if (!first) {
        report.Note("the session given is not logged on");
    }
}

/// Whether the session of @p caller, which is the one given, is accepted.
bool IsAccepted(Probe& probe, const Caller& caller) {
    const auto session = MakeObject<AuthSession>(probe, kSession);
    if (session == nullptr) {
        return false;
    }
    if (Init(probe, *session, caller, "the session given") != 0) {
        probe.Told().Fail(kInit, "refuses the session given with --session");
        probe.Skip(kLoggedOn, "the session given is refused");
        return false;
    }
    ExamineLoggedOn(probe, *session);
    return true;
}

Outcome InitAgain(Probe& probe, const Caller& caller) {
    const auto session = MakeObject<AuthSession>(probe, kSession);
    if (session == nullptr) {
        return {"no session", ""};
    }
    int code = 0;
    (void)probe.Make(kInit, [&] {
        code = session->Init(caller.session, caller.address, caller.agent, kOnlyAsks);
    });
    return {std::to_string(code), ""};
}

void ExamineLive(Probe& probe, const Caller& caller) {
    if (!IsAccepted(probe, caller)) {
        return;
    }
    ExamineRefused(probe, WithOtherAddress(caller), "another address");
    ExamineRefused(probe, WithOtherFamily(caller), "an address of another family");
    ExamineRefused(probe, WithOtherAgent(caller), "another user agent");
    ExamineRefused(probe, WithOtherSession(caller), "another session identifier");
    (void)IsAccepted(probe, caller);
    probe.Keep({kInit, [&probe, caller] { return InitAgain(probe, caller); }});
}

}  // namespace

void ExamineSession(Probe& probe, const Options& options) {
    const Caller caller{options.session, AddressOf(options.address), options.agent};
    if (TellObject<AuthSession>(probe, kSession, "") == nullptr) {
        for (const char* const call : {kInit, kLoggedOn}) {
            probe.Skip(call, "there is no object to ask");
        }
        return;
    }
    for (const char* const identifier : {"", "no such session", "../../etc/passwd"}) {
        const Caller unknown{identifier, caller.address, caller.agent};
        ExamineRefused(probe, unknown, "session " + Quoted(identifier));
    }
    if (options.session.empty()) {
        probe.Skip(kLoggedOn, "no session is given (--session), so that none is accepted");
    } else {
        ExamineLive(probe, caller);
    }
}

}  // namespace conformance
