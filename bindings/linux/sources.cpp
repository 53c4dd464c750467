#include "bindings/linux/sources.h"

#include <memory>
#include <utility>

#include "bindings/linux/modem/messages_source.h"
#include "bindings/linux/modem/modem_source.h"
#include "bindings/linux/network/clients_source.h"
#include "bindings/linux/network/ethernet_source.h"
#include "bindings/linux/network/wifi_source.h"
#include "bindings/linux/position/position_source.h"
#include "bindings/linux/power/power_source.h"
#include "bindings/linux/storage/card_source.h"
#include "bindings/linux/storage/sharing_source.h"
#include "bindings/linux/update/rauc_source.h"
#include "bindings/linux/update/swupdate_source.h"

namespace binding {

namespace {

void AddModem(Board& board, Sources& sources) {
    auto messages = std::make_unique<MessagesSource>(board);
    sources.push_back(std::make_unique<ModemSource>(board, *messages));
    sources.push_back(std::move(messages));
}

void AddNetwork(Board& board, Sources& sources) {
    auto wifi = std::make_unique<WifiSource>(board, WifiSource::Role::main);
    auto guestWifi = std::make_unique<WifiSource>(board, WifiSource::Role::guest);
    sources.push_back(std::make_unique<EthernetSource>(board));
    sources.push_back(std::make_unique<ClientsSource>(board, *wifi, *guestWifi));
    sources.push_back(std::move(wifi));
    sources.push_back(std::move(guestWifi));
}

}  // namespace

Sources MakeSources(Board& board) {
    Sources sources;
    AddModem(board, sources);
    AddNetwork(board, sources);
    sources.push_back(std::make_unique<PowerSource>(board));
    sources.push_back(std::make_unique<PositionSource>(board));
    sources.push_back(std::make_unique<CardSource>(board));
    sources.push_back(std::make_unique<SharingSource>(board));
    sources.push_back(std::make_unique<RaucSource>(board));
    sources.push_back(std::make_unique<SwupdateSource>(board));
    return sources;
}

}  // namespace binding
