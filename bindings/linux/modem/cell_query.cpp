#include "bindings/linux/modem/cell_query.h"

#include <algorithm>
#include <array>
#include <string_view>
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

/// Whether asking again later would not help. A modem that hangs, for instance, fails with one of
/// many other errors, and may answer a minute later.
bool IsFinal(const BusError& error) {
    constexpr std::array<std::string_view, 4> kFinal = {
        kUnsupported, "org.freedesktop.ModemManager1.Error.Core.Unauthorized",
        "org.freedesktop.DBus.Error.AccessDenied", "org.freedesktop.DBus.Error.UnknownMethod"};
    return std::find(kFinal.begin(), kFinal.end(), error.name) != kFinal.end();
}

/// Why the answer to GetCellInfo tells no cells; no error if it tells them.
BusError FlawOf(const json& arguments) {
    const bool isList = arguments.is_array() && !arguments.empty() && arguments.front().is_array();
    const bool areCells = isList && std::all_of(arguments.front().begin(), arguments.front().end(),
                                                [](const json& cell) { return cell.is_object(); });
    return areCells ? BusError() : BusError{"the answer is no list of dictionaries"};
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

void CellQuery::Forget() {
    cells = nullptr;
    askedAt = nullptr;
}

void CellQuery::Update(const json& tree, const std::string& path) {
    if (path != modem) {
        modem = path;
        Forget();
        cellsUnsupported = false;
        cellsFailed = false;
        signalSetUp = false;
        signalFailed = false;
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
        Forget();
        return;
    }
    SetUpSignal(object);
    if (*state < kModemRegistered) {
        Forget();
        return;
    }
    json network = NetworkOf(object);
    // While a question is open, the next one waits for its answer.
    if (network != askedAt && !cellsUnsupported && !cellCall) {
        askedAt = std::move(network);
        AskForCells();
    }
}

void CellQuery::Check() {
    // Not as soon as it has failed: a modem may fail at once, again and again.
    if (!cellsFailed && !signalFailed) {
        return;
    }
    if (std::exchange(cellsFailed, false)) {
        askedAt = nullptr;
    }
    if (std::exchange(signalFailed, false)) {
        signalSetUp = false;
    }
    changed();
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
            if (error) {
                signalFailed = !IsFinal(error);
                Note("signal is not measured, only its quality is told", error);
            }
        },
        kLimit);
}

void CellQuery::AskForCells() {
    cellCall = bus.Call(
        kModemManager, modem, kModemInterface, "GetCellInfo", nullptr,
        [this](const json& arguments, const BusError& answer) {
            cellCall.reset();
            const BusError error = answer ? answer : FlawOf(arguments);
            if (!error) {
                cells = arguments.front();
            } else {
                cells = nullptr;
                cellsUnsupported = IsFinal(error);
                cellsFailed = !cellsUnsupported;
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
