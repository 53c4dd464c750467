#include "tests/faults/device.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>

namespace {

void Spoil(Garbage garbage, std::span<const std::span<std::byte>> outputs) {
    for (const std::span<std::byte> output : outputs) {
        const auto fill = [&](unsigned char byte) {
            std::fill(output.begin(), output.end(), static_cast<std::byte>(byte));
        };
        switch (garbage) {
            case Garbage::kNone:
                break;
            case Garbage::kZero:
                fill(0);
                break;
            case Garbage::kAllOnes:
                fill(0xFF);
                break;
            case Garbage::kHighBits:
                fill(0x80);
                break;
            case Garbage::kEndlessText:
                fill('x');
                break;
            case Garbage::kLargest:
                fill(0xFF);
                // The highest byte of each number, which contains the sign.
                for (std::size_t i = 3; i < output.size(); i += 4) {
                    output[i] = std::byte{0x7F};
                }
                break;
        }
        if (garbage > Garbage::kZero && output.size() == 1) {
            // A bool must not have any other value.
            output[0] = std::byte{1};
        }
    }
}

void Throw(const Fault& fault) {
    switch (fault.thrown) {
        case Thrown::kBadAlloc:
            throw std::bad_alloc();
        case Thrown::kError:
            throw std::runtime_error("thrown by " + fault.call);
        case Thrown::kNumber:
            throw 5;
        case Thrown::kNothing:
            break;
    }
}

bool IsFailure(const std::string& line) {
    return line.starts_with("log 3 ") || line.starts_with("syslog ") ||
           (line.starts_with("log 5 ") && line.find(" - Failed ") != std::string::npos);
}

}  // namespace

std::string Describe(const std::vector<Fault>& faults) {
    constexpr std::array kGarbage = {"nothing", "zero", "0xFF", "0x80", "endless text", "largest"};
    constexpr std::array kThrown = {"", " throwing bad_alloc", " throwing runtime_error",
                                    " throwing a number"};
    if (faults.size() > 3) {
        return "all calls, " + Describe({faults.front()});
    }
    std::string text;
    for (const Fault& fault : faults) {
        text += (text.empty() ? "" : " and ") + fault.call +
                (fault.occurrence == 0 ? "" : " #" + std::to_string(fault.occurrence)) + " = " +
                std::to_string(fault.code) + " writing " +
                kGarbage.at(static_cast<std::size_t>(fault.garbage)) +
                kThrown.at(static_cast<std::size_t>(fault.thrown));
    }
    return text;
}

Device::Device(Model model) {
    GiveSystem(model);
    GiveCellular(model);
    GiveSims();
    GiveWebUi();
    GiveNotifications();
    GiveProcess();
}

void Device::Plan(std::vector<std::vector<Fault>> faults) {
    plan = std::move(faults);
    exchanges.assign(1, {});
    exchanges.reserve(plan.size() + 1);
}

const Fault* Device::FaultOf(const std::string& call, int occurrence) const {
    const auto matches = [&](const Fault& fault) {
        return fault.call == call && (fault.occurrence == 0 || fault.occurrence == occurrence);
    };
    const auto lasting = std::find_if(standing.begin(), standing.end(), matches);
    if (lasting != standing.end()) {
        return &*lasting;
    }
    const std::size_t request = exchanges.size() - 1;
    if (request == 0 || request > plan.size()) {
        return nullptr;
    }
    const std::vector<Fault>& faults = plan[request - 1];
    const auto found = std::find_if(faults.begin(), faults.end(), matches);
    return found == faults.end() ? nullptr : &*found;
}

int Device::Answer(const recording::Call& call) {
    Exchange& exchange = exchanges.back();
    const int occurrence = ++exchange.calls[call.name];
    const auto handler = handlers.find(call.name);
    if (handler == handlers.end()) {
        (void)std::fprintf(stderr, "device.cpp: no answer for %s\n", call.name.c_str());
        std::abort();
    }
    const Fault* const fault = FaultOf(call.name, occurrence);
    if (fault == nullptr) {
        return handler->second(call);
    }
    exchange.failed.emplace(call.name, occurrence);
    Throw(*fault);
    Spoil(fault->garbage, call.outputs);
    return fault->code;
}

void Device::See(const std::string& line) {
    if (line == "FCGX_Accept_r()") {
        if (exchanges.size() <= plan.size()) {
            exchanges.emplace_back();
        }
    } else if (IsFailure(line)) {
        exchanges.back().errors.push_back(line);
    } else if (line.starts_with("log ")) {
        exchanges.front().calls["toru_dbg_log"] = 1;
    }
    if (line.starts_with("syslog ")) {
        exchanges.front().calls["toru_dbg_syslog"] = 1;
    }
}
