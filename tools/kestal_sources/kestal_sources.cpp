// kestal-sources: shows what each source of a Linux board tells the service.
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <ostream>

#include "tools/json_output.h"
#include "tools/kestal_sources/source_report.h"
#include "tools/tool.h"

namespace {

std::string& SocketPath() {
    static std::string path = [] {
        const char* const named = std::getenv("KESTAL_SOURCES");
        return std::string(named == nullptr || *named == '\0' ? "/run/kestal/sources" : named);
    }();
    return path;
}

void List(const Arguments& /*arguments*/, std::ostream& out) {
    WriteSources(out, ReadReport(SocketPath()));
}

void Show(const Arguments& arguments, std::ostream& out) {
    WriteJson(out, SourceNamed(ReadReport(SocketPath()), arguments.Value("source")));
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
            .settings = {{.option = {.name = "--socket",
                                     .description = "Where the service tells it (KESTAL_SOURCES, "
                                                    "or else /run/kestal/sources)",
                                     .value = "PATH"},
                          .apply = [](const std::string& path) { SocketPath() = path; }}}};
}

}  // namespace

int main(int argc, char** argv) {
    return RunTool(SourcesTool(), argc, argv);
}
