#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/sysint.h"

/// What the status component, its owner, remembers of the SIM from one request to the next, so that
/// the group identifier (GID) of the SIM's carrier is read once per SIM and not once per request.
class SubscriberCache {
  public:
    /// Remembers @p identity, the subscriber that was successfully read.
    void Update(std::string identity);

    /// Reads the GID if the last Update brought another subscriber than the one before it and the
    /// identity of that subscriber is not empty.
    void RefreshGid();

    /// First byte of the GID that was read last; 0 before any was read.
    std::uint8_t Gid() const { return gid[0]; }

  private:
    std::string subscriberIdentity;
    bool changed = false;
    std::array<std::uint8_t, SYS_SIM_CARRIER_GID_SIZE> gid{};
};

/// Reads the subscriber's identity into @p cache, which stays as it was if that fails. Returns the
/// result code of sys_getSubscriberInfo.
int RefreshSubscriberInfo(SubscriberCache& cache);
