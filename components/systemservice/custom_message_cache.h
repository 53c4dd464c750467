#pragma once

#include <string>

#include "platform/webui.h"

/// The carrier's texts about software updates. They are kept from one request to the next, so that
/// they are read from the configuration library once per language.
class CustomMessageCache {
  public:
    /// The carrier's text for a notification of the type @p type; empty if there is none, and for
    /// any type that is not about software updates. For a type that is, the texts are fetched first
    /// if none have been fetched yet, if the user's language has changed, or if the text for an
    /// update that is ready is empty. A failure is logged in the name of the function with
    /// @p signature, and the result is then empty.
    std::string Text(const char* signature, const std::string& type);

  private:
    /// Fetches the texts if that is necessary; returns whether it has fetched them.
    bool Refresh(const char* signature);

    SoftwareUpdateCustomMessages messages{};
    std::string language;
    bool loaded = false;
};
