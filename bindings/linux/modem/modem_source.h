// The modem: ModemManager's objects, and NetworkManager's part in the data connection.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "bindings/linux/board.h"
#include "bindings/linux/bus/bus_objects.h"
#include "bindings/linux/modem/cell_query.h"
#include "bindings/linux/modem/data_connection.h"
#include "bindings/linux/modem/followed_objects.h"
#include "bindings/linux/modem/messages_source.h"
#include "bindings/linux/modem/modem.h"
#include "bindings/linux/modem/modem_memory.h"
#include "bindings/linux/modem/traffic_follower.h"

namespace binding {

class ModemSource final : public Source {
  public:
    /// Tells @p newMessages what messages there are.
    ModemSource(Board& board, MessagesSource& newMessages);

    void Start() override;
    void Check() override;
    void Recall(Device& device) const override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void RefreshSoon();
    void Refresh();
    void RefreshModem();
    void FollowObjects(const nlohmann::json& properties, const std::vector<std::string>& sms);
    void UpdateMessages(const nlohmann::json& messaging, const std::vector<std::string>& sms);
    bool IsWhole(const std::string& path);
    void Gone(const std::string& why);

    MessagesSource& messages;
    EventSource refresh;
    /// Ends the wait for what a new modem should tell before it is shown.
    EventSource patience;
    /// The modem that is shown although not everything has been told in time.
    std::string incomplete;
    ModemMemory memory;
    CellQuery cellQuery;
    DataConnection connection;
    TrafficFollower traffic;
    FollowedObjects followed;
    std::optional<Modem> modem;
    BusObjects objects;
};

}  // namespace binding
