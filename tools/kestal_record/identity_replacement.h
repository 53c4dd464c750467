// Replacements that look like what they replace.
#pragma once

#include <cstdint>
#include <string>

#include "tools/kestal_record/identity_form.h"

/// Replacement number @p number for an identity of @p kind that is written like @p form, which it
/// must have: with as many characters, and digits and separators in the same places. An IPv6
/// address is as short as it can be written.
std::string Replacement(const std::string& form, IdentityKind kind, std::uint64_t number);
