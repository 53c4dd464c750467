// Reports a call that crashes the process.
#pragma once

namespace conformance {

/// From now on, a fatal signal prints a finding with the name of the call that was running.
void InstallCrashHandler();

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
