#include "tools/msgbus_commands.h"

int main(int argc, char** argv) {
    return RunTool(MsgbusTool(KESTAL_BINDING_CODES), argc, argv);
}
