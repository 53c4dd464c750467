// Faults of the message bus, the sessions, the response writer, the text domain and the watchdog. A
// member function is wrapped as a function whose first parameter is the object.
#include <arpa/inet.h>
#include <cgicc/CgiEnvironment.h>
#include <libintl.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "platform/language_support.h"
#include "platform/msgbus.h"
#include "platform/notification.h"
#include "platform/toru_dbg.h"
#include "platform/watchdog.h"
#include "tests/unit/conformance/wrong_binding.h"

using wrong::Has;

#define STRING "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"

extern "C" {
const char* RealLevelName(int level) REAL("toru_dbg_get_level_name");
const char* WrongLevelName(int level) WRAPPED("toru_dbg_get_level_name");
const char* WrongLevelName(int level) {
    return Has("level-without-name") && level > TORU_DBG_DEBUG ? nullptr : RealLevelName(level);
}

int RealRegister(const char* name, int flag) REAL("watchdog_application_register");
int WrongRegister(const char* name, int flag) WRAPPED("watchdog_application_register");
int WrongRegister(const char* name, int flag) {
    return Has("ready-not-sent") || Has("own-watchdog") ? 0 : RealRegister(name, flag);
}

int RealKeepAlive(const char* name) REAL("watchdog_application_send_keep_alive");
int WrongKeepAlive(const char* name) WRAPPED("watchdog_application_send_keep_alive");
int WrongKeepAlive(const char* name) {
    static int reports = 0;
    if (Has("keep-alive-fails") && ++reports > 1) {
        return 5;
    }
    return Has("keep-alive-not-sent") || Has("own-watchdog") ? 0 : RealKeepAlive(name);
}
}

// MsgbusHandler
#define CLIENT "_ZN13MsgbusHandlerC1EP23MsgbusCallbackInterface"
void RealClient(MsgbusHandler* self, MsgbusCallbackInterface* callback) REAL(CLIENT);
void WrongClient(MsgbusHandler* self, MsgbusCallbackInterface* callback) WRAPPED(CLIENT);
void WrongClient(MsgbusHandler* self, MsgbusCallbackInterface* callback) {
    static int clients = 0;
    if (Has("client-throws")) {
        throw std::runtime_error("no bus");
    }
    if (Has("second-client-crashes") && ++clients == 2) {
        (void)std::raise(SIGSEGV);
    }
    RealClient(self, callback);
}

#define NO_CLIENT "_ZN13MsgbusHandlerD1Ev"
void RealNoClient(MsgbusHandler* self) REAL(NO_CLIENT);
void WrongNoClient(MsgbusHandler* self) WRAPPED(NO_CLIENT);
void WrongNoClient(MsgbusHandler* self) {
    if (Has("client-end-crashes")) {
        (void)std::raise(SIGSEGV);
    }
    RealNoClient(self);
}

#define GET_DATA "_ZN13MsgbusHandler7GetDataERK" STRING "PvRj"
int RealGetData(MsgbusHandler* self, const std::string& channel, void* buffer, unsigned int& size)
    REAL(GET_DATA);
int WrongGetData(MsgbusHandler* self, const std::string& channel, void* buffer, unsigned int& size)
    WRAPPED(GET_DATA);
int WrongGetData(MsgbusHandler* self, const std::string& channel, void* buffer,
                 unsigned int& size) {
    const unsigned int room = size;
    const char first = buffer == nullptr ? '\0' : static_cast<const char*>(buffer)[0];
    const int code = RealGetData(self, channel, buffer, size);
    if ((code == MSGBUS_SUCCESS || code == MSGBUS_BUFFER_NEEDED) && Has("block-of-no-bytes")) {
        size = 0;
        return MSGBUS_SUCCESS;
    }
    static std::atomic<bool> hasAnswered = false;
    if (code == MSGBUS_SUCCESS) {
        hasAnswered = true;
    }
    if (code != MSGBUS_SUCCESS && code != MSGBUS_BUFFER_NEEDED) {
        if (Has("bus-answers-all") || (Has("bus-answers-after-leaving") && hasAnswered)) {
            size = 0;
            return MSGBUS_SUCCESS;
        }
        if (Has("bus-failure-with-size")) {
            size = 0;
        }
        if (Has("bus-throws")) {
            throw std::runtime_error("no such channel");
        }
        return code;
    }
    if (code == MSGBUS_SUCCESS) {
        if (Has("bus-keeps-size")) {
            size = room;
        }
        auto* const bytes = static_cast<char*>(buffer);
        if (Has("live-values") || Has("live-block-torn-later")) {
            bytes[ANS_NOTIFICATION_LIST_RECORDS + offsetof(AnsNotificationRecord, flags)] =
                static_cast<char>(wrong::Flicker());
        }
        static std::atomic<int> blocks = 0;
        if (Has("block-counts-too-many") || (Has("live-block-torn-later") && ++blocks > 30)) {
            ++bytes[0];
        }
        if (Has("block-without-terminators")) {
            std::memset(bytes + ANS_NOTIFICATION_LIST_RECORDS, 'x',
                        sizeof(AnsNotificationRecord::category));
        }
        if (Has("block-left-out")) {
            bytes[ANS_NOTIFICATION_LIST_RECORDS + 1] = first;
        }
        if (Has("block-of-unknown-severity")) {
            bytes[ANS_NOTIFICATION_LIST_RECORDS + offsetof(AnsNotificationRecord, severity)] = 9;
        }
    }
    return code;
}

// AuthSession
#define SESSION "_ZN11AuthSessionC1Ev"
void RealSession(AuthSession* self) REAL(SESSION);
void WrongSession(AuthSession* self) WRAPPED(SESSION);
void WrongSession(AuthSession* self) {
    if (Has("session-throws")) {
        throw std::runtime_error("no sessions");
    }
    RealSession(self);
}

#define NO_SESSION "_ZN11AuthSessionD1Ev"
void RealNoSession(AuthSession* self) REAL(NO_SESSION);
void WrongNoSession(AuthSession* self) WRAPPED(NO_SESSION);
void WrongNoSession(AuthSession* self) {
    if (Has("session-end-crashes")) {
        (void)std::raise(SIGSEGV);
    }
    RealNoSession(self);
}

thread_local bool gHasSession = false;

#define INIT "_ZN11AuthSession4InitERK" STRING "12webui_addr_tS7_i"
int RealInit(AuthSession* self, const std::string& sessionId, webui_addr_t address,
             const std::string& userAgent, int mode) REAL(INIT);
int WrongInit(AuthSession* self, const std::string& sessionId, webui_addr_t address,
              const std::string& userAgent, int mode) WRAPPED(INIT);
int WrongInit(AuthSession* self, const std::string& sessionId, webui_addr_t address,
              const std::string& userAgent, int mode) {
    thread_local webui_addr_t knownAddress{};
    thread_local std::string knownAgent;
    if (Has("takes-declared-families") && address.family != AF_INET && address.family != AF_INET6) {
        std::abort();
    }
    const int code = RealInit(self, sessionId, address, userAgent, mode);
    gHasSession = code == 0;
    if (code == 0) {
        knownAddress = address;
        knownAgent = userAgent;
        return code;
    }
    if (Has("session-for-anybody")) {
        return 0;
    }
    const bool otherFamily = address.family != knownAddress.family;
    if (Has(otherFamily ? "session-for-other-family" : "session-for-other-address")) {
        address = knownAddress;
    }
    return RealInit(self, sessionId, address,
                    Has("session-for-other-agent") ? knownAgent : userAgent, mode);
}

#define LOGGED_ON "_ZN11AuthSession8LoggedOnERb"
int RealLoggedOn(AuthSession* self, bool& loggedOn) REAL(LOGGED_ON);
int WrongLoggedOn(AuthSession* self, bool& loggedOn) WRAPPED(LOGGED_ON);
int WrongLoggedOn(AuthSession* self, bool& loggedOn) {
    if (Has("asked-after-success") && !gHasSession) {
        std::abort();
    }
    if (Has("logged-on-with-result")) {
        loggedOn = !loggedOn;
    }
    if (Has("logged-on-fails") || Has("logged-on-with-result")) {
        return 7;
    }
    return Has("logged-on-without-result") ? 0 : RealLoggedOn(self, loggedOn);
}

// CgiHelper
#define FAMILY "_Z18GetIPAddressFamilyRK" STRING "Pi"
int RealFamily(const std::string& ip, int* family) REAL(FAMILY);
int WrongFamily(const std::string& ip, int* family) WRAPPED(FAMILY);
int WrongFamily(const std::string& ip, int* family) {
    in_addr address{};
    if (Has("family-of-short-address") && inet_aton(ip.c_str(), &address) != 0) {
        *family = AF_INET;
        return 0;
    }
    if (Has("failure-with-family")) {
        *family = 0;
    }
    return RealFamily(ip, family);
}

#define GET_INSTANCE "_ZN9CgiHelper11GetInstanceEv"
CgiHelper* RealGetInstance() REAL(GET_INSTANCE);
CgiHelper* WrongGetInstance() WRAPPED(GET_INSTANCE);
CgiHelper* WrongGetInstance() {
    static int made = 0;
    CgiHelper* const helper = RealGetInstance();
    // The pointer is only compared, never dereferenced.
    return Has("two-writers") && ++made > 1 ? std::next(helper) : helper;
}

#define SET_HEADER "_ZN9CgiHelper9SetHeaderERK" STRING "S7_"
void RealSetHeader(CgiHelper* self, const std::string& name, const std::string& value)
    REAL(SET_HEADER);
void WrongSetHeader(CgiHelper* self, const std::string& name, const std::string& value)
    WRAPPED(SET_HEADER);
void WrongSetHeader(CgiHelper* self, const std::string& name, const std::string& value) {
    if (Has("header-lost") || (Has("header-not-replaced") && value == "two")) {
        return;
    }
    RealSetHeader(self, name, value);
}

#define SEND_RESPONSE "_ZN9CgiHelper12SendResponseEiRK" STRING
void RealSendResponse(CgiHelper* self, int status, const std::string& body) REAL(SEND_RESPONSE);
void WrongSendResponse(CgiHelper* self, int status, const std::string& body) WRAPPED(SEND_RESPONSE);
void WrongSendResponse(CgiHelper* self, int status, const std::string& body) {
    std::ostringstream written;
    std::streambuf* const stream = std::cout.rdbuf(written.rdbuf());
    RealSendResponse(self, status, Has("body-ends-at-zero") ? std::string(body.c_str()) : body);
    std::cout.rdbuf(stream);
    std::string response = written.str();
    if (Has("response-without-status")) {
        response.erase(0, response.find('\n') + 1);
    }
    if (Has("response-without-empty-line")) {
        response.erase(response.find("\r\n\r\n"), 2);
    }
    std::cout << response;
}

#define GET_IP "_ZNK9CgiHelper5GetIpB5cxx11ERKN5cgicc14CgiEnvironmentE"
std::string RealGetIp(const CgiHelper* self, const cgicc::CgiEnvironment& environment) REAL(GET_IP);
std::string WrongGetIp(const CgiHelper* self, const cgicc::CgiEnvironment& environment)
    WRAPPED(GET_IP);
std::string WrongGetIp(const CgiHelper* self, const cgicc::CgiEnvironment& environment) {
    const std::string address = RealGetIp(self, environment);
    return Has("address-made-up") && address.empty() ? "0.0.0.0" : address;
}

#define GET_COOKIE "_ZNK9CgiHelper9GetCookieERKN5cgicc14CgiEnvironmentERK" STRING "SB_"
std::string RealGetCookie(const CgiHelper* self, const cgicc::CgiEnvironment& environment,
                          const std::string& name, const std::string& defaultValue)
    REAL(GET_COOKIE);
std::string WrongGetCookie(const CgiHelper* self, const cgicc::CgiEnvironment& environment,
                           const std::string& name, const std::string& defaultValue)
    WRAPPED(GET_COOKIE);
std::string WrongGetCookie(const CgiHelper* self, const cgicc::CgiEnvironment& environment,
                           const std::string& name, const std::string& defaultValue) {
    const std::string value =
        RealGetCookie(self, environment, name, Has("cookie-without-default") ? "" : defaultValue);
    return Has("last-cookie") && value == "first" ? "second" : value;
}

// LanguageSupport
#define SET_DOMAIN "_ZN15LanguageSupport23SetTextDomainPropertiesERK" STRING "S7_S7_"
void RealSetDomain(const std::string& textDomain, const std::string& codeSet,
                   const std::string& localeDirectory) REAL(SET_DOMAIN);
void WrongSetDomain(const std::string& textDomain, const std::string& codeSet,
                    const std::string& localeDirectory) WRAPPED(SET_DOMAIN);
void WrongSetDomain(const std::string& textDomain, const std::string& codeSet,
                    const std::string& localeDirectory) {
    RealSetDomain(textDomain, Has("code-set-left-out") ? "UTF-8" : codeSet,
                  Has("directory-left-out") ? "/nowhere" : localeDirectory);
    if (Has("domain-not-current")) {
        (void)textdomain("messages");
    }
}
