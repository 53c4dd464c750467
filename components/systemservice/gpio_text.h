#pragma once

#include <string>

/// Text for a notification of the type @p type about a general-purpose pin that has changed its
/// state. It uses the names that the user has given the pin and its states. Empty for any type that
/// is not about a pin. Both pins are read, whatever the type. If one cannot be read, that is logged
/// in the name of the function with @p signature, and the pin has no text.
std::string ReadGpioText(const char* signature, const std::string& type);
