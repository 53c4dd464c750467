// Wi-Fi: the networks of hostapd.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bindings/linux/network/access_point.h"
#include "bindings/linux/source.h"

namespace binding {

class WifiSource : public Source {
  public:
    enum class Role { main, guest };

    WifiSource(Board& newBoard, Role newRole);

    void Start() override;
    void Check() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

    /// The stations of all networks of this role.
    std::vector<Station> Stations() const;

    /// The interfaces whose stations are known.
    std::vector<std::string> Told() const;

  private:
    void Evaluate();

    Role role;
    std::vector<std::unique_ptr<AccessPoint>> networks;
};

}  // namespace binding
