#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/sysint.h"

/// What the process remembers of the SIM from one request to the next, so that its carrier's group
/// identifier (GID) is read once per SIM and not once per request.
class SubscriberCache {
  public:
    /// Remembers the subscriber identity @p identity of a successful reading.
    void Update(std::string identity);

    /// Reads the GID when the last Update brought another subscriber, and there is one.
    void RefreshGid();

    /// First byte of the GID that was last read; 0 at first.
    std::uint8_t Gid() const { return gid[0]; }

  private:
    std::string subscriberIdentity;
    bool changed = false;
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
};

/// The process's only subscriber cache.
SubscriberCache& TheSubscriberCache();

/// Reads the subscriber's identity into the process's cache, which stays as it was when that fails.
/// Returns the result code of sys_getSubscriberInfo.
int RefreshSubscriberInfo();
