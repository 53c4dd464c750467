// A simulated device of which only one answer matters.
#pragma once

#include <string>

#include "platform/sysint.h"
#include "tests/support/scratch.h"

class DeviceWithSimStatus : public SimulatedDevice {
  protected:
    void SimStatus(int status) const {
        Document("{\"sys\": {\"getSIMStatus\": " + std::to_string(status) + "}}");
    }

    /// The status that the platform reports, or minus the code that it fails with.
    static int SimStatus() {
        int status = 0;
        const int code = sys_getSIMStatus(&status);
        return code == 0 ? status : -code;
    }
};
