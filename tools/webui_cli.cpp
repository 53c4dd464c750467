#include "tools/webui_commands.h"

int main(int argc, char** argv) {
    return RunTool(WebuiTool(KESTAL_BINDING_CODES), argc, argv);
}
