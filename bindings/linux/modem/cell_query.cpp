#include "bindings/linux/modem/cell_query.h"

#include <utility>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/log.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tables/modem_numbers.h"

namespace binding {

namespace {

using nlohmann::json;

/// Seconds between two measurements of the modem.
constexpr std::uint32_t kSignalRate = 5;

/// Microseconds. A modem that hangs lets ModemManager fail after more than a minute.
constexpr std::uint64_t kLimit = 120'000'000;

constexpr const char* kUnsupported = "org.freedesktop.ModemManager1.Error.Core.Unsupported";
constexpr const char* kWrongState = "org.freedesktop.ModemManager1.Error.Core.WrongState";
constexpr const char* kInProgress = "org.freedesktop.ModemManager1.Error.Core.InProgress";

/// Whether asking again later may help.
bool MayPass(const BusError& error) {
    return error.name == kWrongState || error.name == kInProgress || error.IsSilence();
}

/// What changes when the modem goes to another cell, as far as it tells.
json NetworkOf(const json& object) {
    const json& properties = Member(object, kModemInterface);
    const json& network = Member(object, kModem3gppInterface);
    return json::array({Member(properties, "AccessTechnologies"), Member(properties, "State"),
                        Member(properties, "CurrentBands"), Member(network, "RegistrationState"),
                        Member(network, "OperatorCode")});
}

}  // namespace

CellQuery::CellQuery(Bus& newBus, std::function<void()> newChanged)
    : bus(newBus), changed(std::move(newChanged)) {}

void CellQuery::Update(const json& tree, const std::string& path) {
    if (path != modem) {
        modem = path;
        cells = nullptr;
        askedAt = nullptr;
        cellsUnsupported = false;
        signalSetUp = false;
        cellCall.reset();
        signalCall.reset();
    }
    if (modem.empty()) {
        return;
    }
    const json& object = Member(tree, modem);
    const auto state = Number(Member(object, kModemInterface), "State");
    if (!state || *state < kModemEnabled) {
        // A modem that is switched on again has forgotten that its signal is to be measured.
        signalSetUp = false;
        cells = nullptr;
        askedAt = nullptr;
        return;
    }
    SetUpSignal(object);
    if (*state < kModemRegistered) {
        cells = nullptr;
        askedAt = nullptr;
        return;
    }
    json network = NetworkOf(object);
    // While a question is open, the next one waits for its answer.
    if (network != askedAt && !cellsUnsupported && !cellCall) {
        askedAt = std::move(network);
        AskForCells();
    }
}

void CellQuery::SetUpSignal(const json& object) {
    const json& signal = Member(object, kSignalInterface);
    if (signalSetUp || signalCall || !signal.is_object()) {
        return;
    }
    signalSetUp = true;
    signalCall = bus.Call(
        kModemManager, modem, kSignalInterface, "Setup",
        [](sd_bus_message* message) { return sd_bus_message_append(message, "u", kSignalRate); },
        [this](const json& /*arguments*/, const BusError& error) {
            signalCall.reset();
            if (!error) {
                return;
            }
            signalSetUp = !MayPass(error);
            Note("signal is not measured, only its quality is told", error);
        },
        kLimit);
}

void CellQuery::AskForCells() {
    cellCall = bus.Call(
        kModemManager, modem, kModemInterface, "GetCellInfo", nullptr,
        [this](const json& arguments, const BusError& error) {
            cellCall.reset();
            if (!error) {
                cells = arguments.is_array() && !arguments.empty() ? arguments.front() : json();
            } else {
                cells = nullptr;
                cellsUnsupported = !MayPass(error);
                Note("cells are not told", error);
            }
            changed();
        },
        kLimit);
}

void CellQuery::Note(const char* what, const BusError& error) {
    // Many modems cannot; an owner can only mend what is forbidden or fails.
    if (error.name != kUnsupported && noted.insert(what + (": " + error.name)).second) {
        LINUX_LOG(TORU_DBG_NOTICE, "modem: %s: %s", what, error.Text().c_str());
    }
}

}  // namespace binding
