// What a board answers while its thread has failed.
#pragma once

#include <optional>

#include "bindings/device/device.h"
#include "bindings/linux/source.h"

namespace binding {

/// That the calls of its sources fail. After these have been destroyed and while there are no
/// others, it is the calls of those before.
class FailedAnswers {
  public:
    /// There are @p sources now. Without any, those before count.
    void Note(const Sources& sources);
    /// There are others in place of those noted.
    void Forget() { noted.reset(); }

    Device Answers() const;

  private:
    std::optional<Device> noted;
};

}  // namespace binding
