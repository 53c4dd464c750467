// Messages that the modem has received, and which of them have been read.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bindings/linux/board.h"
#include "bindings/linux/modem/message_store.h"
#include "bindings/linux/modem/messages.h"

namespace binding {

/// It listens to nobody but the store: the source of the modem hands over what ModemManager tells.
/// While that one is lost, the calls fail there.
class MessagesSource final : public Source {
  public:
    explicit MessagesSource(Board& board);

    /// The messages at @p newPaths of @p newTree are those of the modem.
    void Update(const nlohmann::json& tree, const std::vector<std::string>& paths);
    /// There is no modem, or one that has no messages.
    void None();

    void Start() override;
    void Fill(Device& device) const override;
    void Fail(Device& device, int code) const override;
    nlohmann::json Said() const override;

  private:
    void ReadStore();

    std::string storePath;
    EventSource storeWatch;
    MessageKeys readKeys;
    std::vector<Message> messages;
};

}  // namespace binding
