// What ModemManager tells only when a method asks for it: measured signal, and the cells in use.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "bindings/linux/bus/bus.h"

namespace binding {

/// Has the signal of each modem measured, and asks for the cells whenever they may have changed. A
/// modem that cannot do either, or may not, is asked once; what has failed for another reason is
/// tried again with the next check.
class CellQuery {
  public:
    /// Calls @p newChanged when the cells have been told.
    CellQuery(Bus& newBus, std::function<void()> newChanged);

    /// Follows the modem @p path of @p tree; an empty one for none.
    void Update(const nlohmann::json& tree, const std::string& path);

    /// Tries again what has failed.
    void Check();

    /// The newest reply of GetCellInfo, a list of dictionaries; null without one.
    const nlohmann::json& Cells() const { return cells; }

  private:
    void Forget();
    void SetUpSignal(const nlohmann::json& object);
    void AskForCells();
    void Note(const char* what, const BusError& error);

    Bus& bus;
    std::function<void()> changed;
    std::string modem;
    nlohmann::json cells;
    /// What was told of the network when the cells were asked for last.
    nlohmann::json askedAt;
    bool cellsUnsupported = false;
    bool cellsFailed = false;
    bool signalSetUp = false;
    bool signalFailed = false;
    /// What has been logged.
    std::set<std::string> noted;
    Bus::PendingCall cellCall;
    Bus::PendingCall signalCall;
};

}  // namespace binding
