// File sharing: the unit of Samba.
#pragma once

#include <memory>
#include <string>

#include "bindings/linux/bus/bus_objects.h"
#include "bindings/linux/source.h"

namespace binding {

class SharingSource : public Source {
  public:
    explicit SharingSource(Board& newBoard) : Source(newBoard, "sharing") {}

    void Start() override;
    void Check() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void Evaluate();
    void Subscribe();
    void OnSubscribed(const BusError& error);

    std::string unitPath;
    std::string activeState;
    std::unique_ptr<BusObjects> manager;
    Bus::PendingCall subscription;
    bool subscribed = false;
    /// Whether the last subscription has been refused, and whether that has been logged.
    bool isRefused = false;
    bool complained = false;
};

}  // namespace binding
