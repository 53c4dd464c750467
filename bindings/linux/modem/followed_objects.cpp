#include "bindings/linux/modem/followed_objects.h"

#include <algorithm>

#include "bindings/linux/bus/tree.h"

namespace binding {

void FollowedObjects::Follow(BusObjects& objects,
                             const std::map<std::string, std::string>& wanted) {
    for (const auto& [path, interface] : followed) {
        if (wanted.count(path) == 0) {
            objects.Forget(path);
        }
    }
    followed = wanted;
    for (const auto& [path, interface] : followed) {
        if (!objects.IsWatched(path)) {
            objects.Watch(path, {interface});
        }
    }
}

bool FollowedObjects::AreRead(const nlohmann::json& tree) const {
    return std::all_of(followed.begin(), followed.end(), [&tree](const auto& object) {
        return Member(Member(tree, object.first), object.second).is_object();
    });
}

}  // namespace binding
