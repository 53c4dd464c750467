// kestal-record: records the device through the binding that it is linked with.
#include <string_view>

#include "bindings/linux/board_remark.h"
#include "tools/kestal_record/record_command.h"
#include "tools/kestal_sources/source_report.h"

int main(int argc, char** argv) {
    const bool hasSources = std::string_view(KESTAL_BINDING_NAME) == "linux";
    Tool tool = {.name = "kestal-record",
                 .description = "Records this device as a document that the simulator can play.",
                 .codes = {},
                 .commands = {RecordCommand("", {.name = KESTAL_BINDING_NAME,
                                                 .codes = KESTAL_BINDING_CODES,
                                                 .hasSources = hasSources,
                                                 .remark = KESTAL_BINDING_REMARK})}};
    if (hasSources) {
        tool.settings.push_back(SocketSetting());
    }
    return RunTool(tool, argc, argv);
}
