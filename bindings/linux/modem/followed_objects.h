// Objects of a daemon that others of its objects name.
#pragma once

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "bindings/linux/bus/bus_objects.h"

namespace binding {

class FollowedObjects {
  public:
    /// Reads and follows exactly the objects @p wanted, path to interface; those that were wanted
    /// before and are not any more are forgotten.
    void Follow(BusObjects& objects, const std::map<std::string, std::string>& wanted);

    /// Whether all that is wanted has been read into @p tree.
    bool AreRead(const nlohmann::json& tree) const;

  private:
    std::map<std::string, std::string> followed;
};

}  // namespace binding
