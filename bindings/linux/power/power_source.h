// The battery: UPower where it is on the bus, else the kernel.
#pragma once

#include <memory>

#include "bindings/linux/bus/bus_objects.h"
#include "bindings/linux/kernel/uevents.h"
#include "bindings/linux/power/power_supply.h"
#include "bindings/linux/source.h"

namespace binding {

class PowerSource : public Source {
  public:
    explicit PowerSource(Board& newBoard) : Source(newBoard, "power") {}

    void Start() override;
    void Check() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void ReadKernel();
    void Evaluate();

    PowerSupplies kernel;
    PowerSupplies supplies;
    std::unique_ptr<BusObjects> upower;
    std::unique_ptr<Uevents> events;
};

}  // namespace binding
