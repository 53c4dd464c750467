// Reading what happens to a call instead of a plain answer.
#pragma once

#include <memory>

#include "bindings/device/fault.h"
#include "bindings/document/node.h"

namespace binding {

/// The faults of a document that is being read.
class FaultCollector {
  public:
    /// @p newEarlier: those of an earlier version of the document.
    explicit FaultCollector(const Faults& newEarlier) : earlier(newEarlier) {}

    /// The fault with @p plan: the earlier one if there was one, so that it remembers what it has
    /// seen.
    std::shared_ptr<Fault> WithPlan(FaultPlan plan);

    const Faults& Collected() const { return collected; }

  private:
    const Faults& earlier;
    Faults collected;
};

/// The fault in the entry @p object of a call, which has a member "error". Ignores "healed". Throws
/// ValueError.
FaultPlan ReadFaultPlan(const Node& object);

/// Throws ValueError unless @p object asks for a fault: the same members, but "error" may be
/// missing, and there is neither "since" nor "healed". A name as "error" is not checked, because
/// only the call says which names there are.
void CheckFaultOrder(const Node& object);

/// Whether @p plan says more than that every call fails at once.
bool IsMoreThanAnError(const FaultPlan& plan);

}  // namespace binding
