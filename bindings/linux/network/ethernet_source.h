// The Ethernet ports.
#pragma once

#include <optional>

#include "bindings/linux/network/route_socket.h"
#include "bindings/linux/source.h"

namespace binding {

class EthernetSource : public Source {
  public:
    explicit EthernetSource(Board& newBoard) : Source(newBoard, "ethernet") {}

    void Start() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void Evaluate();

    std::optional<RouteSocket> routes;
};

}  // namespace binding
