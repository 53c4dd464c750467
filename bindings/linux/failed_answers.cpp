#include "bindings/linux/failed_answers.h"

#include <utility>

#include "bindings/device/codes.h"
#include "bindings/linux/absent_device.h"

namespace binding {

void FailedAnswers::Note(const Sources& sources) {
    if (sources.empty()) {
        return;
    }
    Device device = AbsentDevice();
    for (const auto& source : sources) {
        source->Recall(device);
        source->Fail(device, kSourceLost);
    }
    noted = std::move(device);
}

Device FailedAnswers::Answers() const {
    return noted.value_or(AbsentDevice());
}

}  // namespace binding
