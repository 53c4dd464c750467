// Calls that are slow, that hang, or that fail only now and then.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace binding {

/// What happens to a call, and how often.
struct FaultPlan {
    std::string call;  ///< the call, as people name it
    int code = 0;      ///< code with which affected calls fail; 0: they answer
    std::chrono::milliseconds delay{0};
    bool hangs = false;
    std::optional<std::uint32_t> times;  ///< how many calls are affected; nullopt: no limit
    std::optional<double> probability;   ///< with which a call is affected; nullopt: always
    std::uint32_t seed = 0;
    std::string since;  ///< tells the fault from an equal one that was set earlier

    bool operator==(const FaultPlan&) const = default;
};

/// A fault with its memory of earlier calls. Several threads may use it.
class Fault {
  public:
    explicit Fault(FaultPlan newPlan) : plan(std::move(newPlan)), random(plan.seed) {}

    const FaultPlan& Plan() const { return plan; }

    /// Whether the next call is affected. Counts that call.
    bool AffectsNextCall();

  private:
    const FaultPlan plan;
    std::mutex mutex;
    std::uint32_t affected = 0;
    /// The standard prescribes its numbers, so that a seed means the same everywhere.
    std::mt19937 random;
};

using Faults = std::vector<std::shared_ptr<Fault>>;

/// Lets @p fault happen to a call, if it affects the call: waits, and returns the code that the
/// call fails with; 0 when the call is to answer. A wait ends early when the newest state of the
/// device does not have the fault any more (the call then answers), and when the process has been
/// asked to end (the call then fails with @p codeBase + kInterrupted).
int Meet(Fault& fault, int codeBase);

}  // namespace binding
