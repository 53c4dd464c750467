// Reports a call that ends the process.
#pragma once

namespace conformance {

/// For the lifetime of the object, a fatal signal and a call of exit() print a finding, with the
/// name of the call that was running on that thread, and end the process with status 1.
class CrashReports {
  public:
    CrashReports();
    ~CrashReports();
    CrashReports(const CrashReports&) = delete;
    CrashReports& operator=(const CrashReports&) = delete;
};

/// Marks the calling thread as making the call @p name for the lifetime of the object.
class CrashName {
  public:
    explicit CrashName(const char* name);
    ~CrashName();
    CrashName(const CrashName&) = delete;
    CrashName& operator=(const CrashName&) = delete;

  private:
    const char* previous;
};

}  // namespace conformance
