// What the service is expected to log, or not to log, when a call of the platform fails.
#pragma once

#include <string>

#include "tests/faults/device.h"

/// Whether the service logs nothing when the @p occurrence-th call of @p call in a request fails.
bool IsSilent(const std::string& call, int occurrence);

/// Whether @p code is an answer of this call rather than a failure.
bool IsAnswer(const std::string& call, int occurrence, int code);

/// Whether an error line of @p exchange tells that @p fault has occurred.
bool IsLogged(const Exchange& exchange, const Fault& fault);

/// Whether nothing is logged of @p call because the log line of another call in @p failed tells
/// enough.
bool IsCovered(const std::string& call, const std::set<std::pair<std::string, int>>& failed);

/// Whether the service makes @p call in its first request only and keeps the result.
bool IsReadOnce(const std::string& call);

/// Why the service does not make @p call; null when it does.
const char* ReasonNotToCall(const std::string& call);

/// Why @p call cannot fail; null when it can.
const char* ReasonNotToFail(const std::string& call);

/// Every call that the tables name, to check that each is still declared.
std::set<std::string> NamesInTables();
