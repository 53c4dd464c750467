// What the service has to log, or must not log, when a call of the platform fails.
#pragma once

#include <string>

#include "tests/faults/device.h"

/// Whether the service logs nothing when the @p occurrence-th call of @p call in a request fails.
bool IsSilent(const std::string& call, int occurrence);

/// Whether @p code is a normal answer of this call and not a failure.
bool IsAnswer(const std::string& call, int occurrence, int code);

/// Whether an error line of @p exchange reports @p fault.
bool IsLogged(const Exchange& exchange, const Fault& fault);

/// Whether the failure of @p call is not logged because the log already has a line about another
/// call in @p failed.
bool IsCovered(const std::string& call, const std::set<std::pair<std::string, int>>& failed);

/// Whether the service makes @p call only in its first request and keeps the result.
bool IsReadOnce(const std::string& call);

/// The reason why the service does not make @p call; null if it does.
const char* ReasonNotToCall(const std::string& call);

/// The reason why @p call cannot fail; null if it can.
const char* ReasonNotToFail(const std::string& call);

/// All calls that the tables name, so that a test can check that each is still declared.
std::set<std::string> NamesInTables();
