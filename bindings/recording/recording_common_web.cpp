#include <arpa/inet.h>
#include <cgicc/CgiEnvironment.h>
#include <cgicc/HTTPCookie.h>

#include <array>
#include <cstdio>
#include <iostream>
#include <span>

#include "bindings/recording/recording.h"
#include "platform/auth_session.h"
#include "platform/cgi_helper.h"
#include "platform/language_support.h"
#include "platform/maintenance_thread.h"
#include "platform/msgbus.h"

using recording::InsidePlatform;
using recording::Output;
using recording::Play;

struct CgiHelper::State {};

CgiHelper::CgiHelper() = default;

CgiHelper::~CgiHelper() {
    const InsidePlatform inside;
    recording::Record("~CgiHelper()");
    recording::Act("~CgiHelper");
}

CgiHelper* CgiHelper::GetInstance() {
    const InsidePlatform inside;
    return Play("CgiHelper::GetInstance", "", {}, 0) == 0 ? new CgiHelper : nullptr;
}

void CgiHelper::SetHeader(const std::string& name, const std::string& value) {
    const InsidePlatform inside;
    Play("CgiHelper::SetHeader", name + ", " + value, {}, 0);
}

void CgiHelper::SendResponse(int status, const std::string& body) {
    const InsidePlatform inside;
    Play("CgiHelper::SendResponse", std::to_string(status) + ", " + body, {}, 0);
    std::cout << body;
}

std::string CgiHelper::GetIp(const cgicc::CgiEnvironment& environment) const {
    const InsidePlatform inside;
    Play("CgiHelper::GetIp", "", {}, 0);
    return environment.getRemoteAddr();
}

std::string CgiHelper::GetCookie(const cgicc::CgiEnvironment& environment, const std::string& name,
                                 const std::string& defaultValue) const {
    const InsidePlatform inside;
    Play("CgiHelper::GetCookie", name + ", \"" + defaultValue + "\"", {}, 0);
    for (const cgicc::HTTPCookie& cookie : environment.getCookieList()) {
        if (cookie.getName() == name) {
            return cookie.getValue();
        }
    }
    return defaultValue;
}

int GetIPAddressFamily(const std::string& ip, int* family) {
    const InsidePlatform inside;
    std::array<std::byte, 16> address{};
    int parsed = 1;
    if (inet_pton(AF_INET, ip.c_str(), address.data()) == 1) {
        *family = AF_INET;
        parsed = 0;
    } else if (inet_pton(AF_INET6, ip.c_str(), address.data()) == 1) {
        *family = AF_INET6;
        parsed = 0;
    }
    return Play("GetIPAddressFamily", ip, {Output(family)}, parsed);
}

struct AuthSession::State {};

AuthSession::AuthSession() {
    const InsidePlatform inside;
    recording::PlayUnrecorded("AuthSession::AuthSession");
}

AuthSession::~AuthSession() = default;

int AuthSession::Init(const std::string& sessionId, webui_addr_t address,
                      const std::string& userAgent, int mode) {
    const InsidePlatform inside;
    std::string text;
    for (const std::uint8_t byte : address.address) {
        std::array<char, 3> hex{};
        (void)std::snprintf(hex.data(), hex.size(), "%02x", byte);
        text += hex.data();
    }
    return Play("AuthSession::Init",
                sessionId + ", family " + std::to_string(address.family) + " address " + text +
                    ", " + userAgent + ", " + std::to_string(mode),
                {});
}

int AuthSession::LoggedOn(bool& loggedOn) {
    const InsidePlatform inside;
    return Play("AuthSession::LoggedOn", "", {Output(&loggedOn)});
}

void LanguageSupport::SetTextDomainProperties(const std::string& textDomain,
                                              const std::string& codeSet,
                                              const std::string& localeDirectory) {
    const InsidePlatform inside;
    Play("LanguageSupport::SetTextDomainProperties",
         textDomain + ", " + codeSet + ", " + localeDirectory, {}, 0);
}

bool MaintenanceThreadCallbackInterface::OnThreadNotify(unsigned int /*event*/) {
    const InsidePlatform inside;
    return false;
}

MaintenanceThreadCallbackInterface::~MaintenanceThreadCallbackInterface() = default;

struct MaintenanceThread::State {};

MaintenanceThread::MaintenanceThread(MaintenanceThreadCallbackInterface* newCallback,
                                     unsigned int newInterval, unsigned int reserved)
    : callback(newCallback), interval(newInterval) {
    const InsidePlatform inside;
    Play("MaintenanceThread::MaintenanceThread",
         std::string(callback == nullptr ? "no callback" : "callback") + ", " +
             std::to_string(interval) + ", " + std::to_string(reserved),
         {}, 0);
}

MaintenanceThread::~MaintenanceThread() = default;

int MaintenanceThread::Initialize() {
    const InsidePlatform inside;
    return Play("MaintenanceThread::Initialize", "", {}, 0);
}

int MaintenanceThread::Run() {
    const InsidePlatform inside;
    return Play("MaintenanceThread::Run", "interval " + std::to_string(interval), {}, 0);
}

int MaintenanceThread::Shutdown() {
    const InsidePlatform inside;
    return Play("MaintenanceThread::Shutdown", "", {}, 0);
}

struct MsgbusHandler::State {};

// cppcheck-suppress constParameter ; platform/ declares the parameter like this
MsgbusHandler::MsgbusHandler(MsgbusCallbackInterface* callback) {
    const InsidePlatform inside;
    Play("MsgbusHandler::MsgbusHandler", callback == nullptr ? "no callback" : "callback", {}, 0);
}

MsgbusHandler::~MsgbusHandler() = default;

int MsgbusHandler::Initialize() {
    const InsidePlatform inside;
    return Play("MsgbusHandler::Initialize", "", {}, 0);
}

int MsgbusHandler::GetData(const std::string& channel, void* buffer, unsigned int& size) {
    const InsidePlatform inside;
    const std::string room = buffer == nullptr ? "no buffer" : "room for " + std::to_string(size);
    return Play("MsgbusHandler::GetData", channel + ", " + room,
                {Output(static_cast<std::byte*>(buffer), size), Output(&size)});
}

int MsgbusHandler::Uninitialize() {
    const InsidePlatform inside;
    return Play("MsgbusHandler::Uninitialize", "", {}, 0);
}
