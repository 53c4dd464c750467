// What is known to be said, or not to be said, when a call of the platform fails.
#pragma once

#include <string>

#include "tests/faults/device.h"

/// Whether the @p occurrence-th call of @p call in a request fails without a word.
bool IsSilent(const std::string& call, int occurrence);

/// Whether @p code is no failure of this call but an answer.
bool IsAnswer(const std::string& call, int occurrence, int code);

/// Whether an error line of @p exchange tells that @p fault has occurred.
bool IsLogged(const Exchange& exchange, const Fault& fault);

/// Whether nothing is said of @p call because another one of @p failed says enough.
bool IsCovered(const std::string& call, const std::set<std::pair<std::string, int>>& failed);

/// Whether what @p call brought at the first request stays for the life of the process.
bool IsReadOnce(const std::string& call);

/// Why the service does not make @p call; null when it does.
const char* ReasonNotToCall(const std::string& call);

/// Why there is no failure of @p call; null when it can fail.
const char* ReasonNotToFail(const std::string& call);

/// Every call that the tables name, for a look at whether it is still declared.
std::set<std::string> NamesInTables();
