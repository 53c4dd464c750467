// Common web library: response writer, session check, text domain, maintenance thread, message bus.
#pragma once

#include <cgicc/CgiEnvironment.h>

#include <memory>
#include <string>

#include "platform/webui.h"

/// Writes CGI responses to std::cout and reads the caller's address and cookies.
class CgiHelper {
  public:
    /// The process's only writer, created on first use; null when it cannot be created. The caller
    /// that is done with it deletes it.
    static CgiHelper* GetInstance();

    virtual ~CgiHelper();
    CgiHelper(const CgiHelper&) = delete;
    CgiHelper& operator=(const CgiHelper&) = delete;

    /// Sets a header that every later response carries.
    void SetHeader(const std::string& name, const std::string& value);

    /// Writes status line, headers and @p body.
    void SendResponse(int status, const std::string& body);

    /// Text of the caller's address; empty when the web server gave none.
    std::string GetIp(const cgicc::CgiEnvironment& environment) const;

    /// Value of the first cookie called @p name, or @p defaultValue.
    std::string GetCookie(const cgicc::CgiEnvironment& environment, const std::string& name,
                          const std::string& defaultValue) const;

  private:
    CgiHelper();

    struct State;
    std::unique_ptr<State> state;
};

/// Stores AF_INET or AF_INET6 in @p family for the address text @p ip. Returns 0 on success;
/// otherwise the text is no address and @p family is left as it was.
int GetIPAddressFamily(const std::string& ip, int* family);

/// Check of one web UI session.
class AuthSession {
  public:
    AuthSession();
    ~AuthSession();
    AuthSession(const AuthSession&) = delete;
    AuthSession& operator=(const AuthSession&) = delete;

    /// Looks the session up for this caller. @p mode is 2 for a caller that only asks. Returns 0
    /// when there is such a session.
    int Init(const std::string& sessionId, webui_addr_t address, const std::string& userAgent,
             int mode);

    /// Stores whether the session is logged on. Returns 0 on success; needs a successful Init.
    int LoggedOn(bool& loggedOn);

  private:
    struct State;
    std::unique_ptr<State> state;
};

/// Where gettext finds the translations.
class LanguageSupport {
  public:
    /// Binds @p textDomain to the catalogues below @p localeDirectory, read in @p codeSet, and
    /// makes it the current domain.
    static void SetTextDomainProperties(const std::string& textDomain, const std::string& codeSet,
                                        const std::string& localeDirectory);
};

/// What a MaintenanceThread calls.
// NOLINTNEXTLINE(cppcoreguidelines-special-member-functions): without state, it can be copied
class MaintenanceThreadCallbackInterface {
  public:
    /// Called once per interval on the maintenance thread; the base returns false.
    virtual bool OnThreadNotify(unsigned int event);

    virtual ~MaintenanceThreadCallbackInterface();
};

/// A thread that calls back once per interval.
class MaintenanceThread {
  public:
    /// @p interval is in seconds. @p reserved is given as 0.
    MaintenanceThread(MaintenanceThreadCallbackInterface* callback, unsigned int interval,
                      unsigned int reserved);
    ~MaintenanceThread();
    MaintenanceThread(const MaintenanceThread&) = delete;
    MaintenanceThread& operator=(const MaintenanceThread&) = delete;

    /// Prepares the thread. Returns 0 on success.
    int Initialize();

    /// Starts the thread, which inherits the caller's signal mask. Returns 0 on success.
    int Run();

    /// Stops the thread and waits for its end; harmless when it is not running. Returns 0.
    int Shutdown();

    /// Replaces the interval, in seconds; takes effect with the next Run.
    void SetInterval(unsigned int newInterval) { interval = newInterval; }

  private:
    struct State;
    MaintenanceThreadCallbackInterface* callback;
    unsigned int interval;
    std::unique_ptr<State> state;
};

/// Result codes of MsgbusHandler that callers tell apart; every other one is an error.
enum msgbus_result_e : int {
    MSGBUS_SUCCESS = 0,
    /// The buffer is missing or too small; the size has been set to the one that is needed.
    MSGBUS_BUFFER_NEEDED = 4,
};

/// What a MsgbusHandler calls when a channel changes.
class MsgbusCallbackInterface;

/// A client of the message bus, on whose channels the services of the device publish their state.
class MsgbusHandler {
  public:
    /// @p callback is null for a client that only reads.
    explicit MsgbusHandler(MsgbusCallbackInterface* callback);
    ~MsgbusHandler();
    MsgbusHandler(const MsgbusHandler&) = delete;
    MsgbusHandler& operator=(const MsgbusHandler&) = delete;

    /// Joins the bus. Returns MSGBUS_SUCCESS on success.
    int Initialize();

    /// Copies what was last published on @p channel to @p buffer, which has room for @p size bytes,
    /// and sets @p size to the number of bytes copied. Returns MSGBUS_SUCCESS then,
    /// MSGBUS_BUFFER_NEEDED with the size that is needed when the buffer is null or too small, and
    /// another code, with nothing written, on failure.
    int GetData(const std::string& channel, void* buffer, unsigned int& size);

    /// Leaves the bus. Returns MSGBUS_SUCCESS on success.
    int Uninitialize();

  private:
    struct State;
    std::unique_ptr<State> state;
};
