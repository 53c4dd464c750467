// Reports of gpsd. The input has one on each line.
#include "bindings/linux/position/gpsd_report.h"
#include "fuzz/target.h"
#include "platform/sysint.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = InputText(data, size);
    binding::GpsReceivers receivers;
    for (const std::string_view line : LinesOf(input)) {
        const int before = receivers.Status();
        const bool isChanged = receivers.Read(line);
        const int status = receivers.Status();
        Require(status >= SYS_GPS_OFF && status <= SYS_GPS_GOT_FIX, "a status is a known one");
        Require(isChanged == (status != before), "a change is told", line);
        Require(!receivers.Read(line), "the same report again changes nothing", line);
    }
    return 0;
}
