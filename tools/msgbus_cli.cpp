#include "tools/msgbus_commands.h"

int main(int argc, char** argv) {
    return RunTool(MsgbusTool(), argc, argv);
}
