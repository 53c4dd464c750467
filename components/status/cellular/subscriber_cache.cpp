#include "components/status/cellular/subscriber_cache.h"

#include <utility>

#include "components/status/cellular/sim_carrier_gid.h"
#include "framework/log.h"
#include "platform/fixed_text.h"

namespace {

/// Which of the SIM's group identifiers names the carrier.
constexpr std::uint8_t kCarrierGidIndex = 1;

}  // namespace

void SubscriberCache::Update(std::string identity) {
    changed = identity != subscriberIdentity;
    subscriberIdentity = std::move(identity);
}

void SubscriberCache::RefreshGid() {
    if (changed && !subscriberIdentity.empty()) {
        std::uint8_t length = 0;
        GetSIMCarrierGID(gid.data(), &length, kCarrierGidIndex);
    }
}

int RefreshSubscriberInfo(SubscriberCache& cache) {
    KESTAL_SIGNATURE("int RefreshSubscriberInfo()");
    KESTAL_BEGIN();
    sys_subscriber_info_t info{};
    const int result = sys_getSubscriberInfo(&info);
    if (result == SYS_SUCCESS) {
        cache.Update(FixedText(info.identity));
    } else {
        KESTAL_FAILURE(
            "sys_getSubscriberInfo failed, returned error code [%d]. Try sysintcli "
            "getSubscriberInfo from command line.",
            result);
    }
    KESTAL_END_RETURNING(result);
    return result;
}
