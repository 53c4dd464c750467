#pragma once

#include <string>

#include "platform/webui.h"

/// What the carrier has to say about software updates, kept from one request to the next so that
/// the configuration library is asked once per language.
class CustomMessageCache {
  public:
    /// The carrier's text for a notification of the type @p type; empty when there is none and for
    /// any type that is not about software updates. For one that is, the texts are fetched first
    /// when none have been, when the user's language has changed and when the ready text is empty.
    /// What fails is logged in the name of the function with @p signature, and there is no text
    /// then.
    std::string Text(const char* signature, const std::string& type);

  private:
    /// Fetches the texts when they are to be fetched; returns whether they are new.
    bool Refresh(const char* signature);

    SoftwareUpdateCustomMessages messages{};
    std::string language;
    bool loaded = false;
};
