#pragma once

#include <string>

/// Makes @p json valid UTF-8. Names of networks, clients and messages come from outside as any
/// bytes, and the tree writes them as they are; a reader of JSON refuses the whole answer for one
/// wrong byte. Each sequence that is no UTF-8 becomes U+FFFD, valid text stays as it is. Returns
/// whether there was anything to replace.
bool ReplaceInvalidUtf8(std::string& json);
