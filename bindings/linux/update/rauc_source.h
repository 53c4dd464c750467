// Software updates by RAUC.
#pragma once

#include <memory>

#include "bindings/linux/bus/bus_objects.h"
#include "bindings/linux/source.h"
#include "bindings/linux/update/update_state.h"

namespace binding {

class RaucSource : public Source {
  public:
    explicit RaucSource(Board& newBoard) : Source(newBoard, "rauc") {}

    void Start() override;
    void Check() override { rauc->Check(); }
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void Evaluate();
    void AskForVersion();

    UpdateState state;
    std::unique_ptr<BusObjects> rauc;
    Bus::PendingCall slots;
};

}  // namespace binding
