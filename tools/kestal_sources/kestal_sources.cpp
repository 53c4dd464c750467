// kestal-sources: shows what each source of a Linux board tells the service.
#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/json_output.h"
#include "tools/kestal_sources/source_report.h"
#include "tools/tool.h"

namespace {

void List(const Arguments& /*arguments*/, std::ostream& out) {
    WriteSources(out, ReadReport());
}

void Show(const Arguments& arguments, std::ostream& out) {
    WriteJson(out, SourceNamed(ReadReport(), arguments.Value("source")));
}

Tool SourcesTool() {
    return {.name = "kestal-sources",
            .description = "Shows what each source of this board tells the service.",
            .codes = {},
            .commands = {{.names = {"list"},
                          .description = "Lists the sources, and since when each is there or not",
                          .run = List},
                         {.names = {"show"},
                          .description = "Shows what a source has told",
                          .parameters = {{.name = "source", .description = "Name of the source"}},
                          .run = Show}},
            .settings = {SocketSetting()}};
}

}  // namespace

int main(int argc, char** argv) {
    return RunTool(SourcesTool(), argc, argv);
}
