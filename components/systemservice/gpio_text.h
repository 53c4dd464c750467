#pragma once

#include <string>

/// What has happened to a general-purpose pin, in the words that the user has given for the pin and
/// its states, for a notification of the type @p type; empty for any type that is not about a pin.
/// Both pins are read, whatever the type. A pin that cannot be read has no text and is logged in
/// the name of the function with @p signature.
std::string ReadGpioText(const char* signature, const std::string& type);
