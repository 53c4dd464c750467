#include "tools/sysint_commands.h"

int main(int argc, char** argv) {
    return RunTool(SysintTool(KESTAL_BINDING_CODES), argc, argv);
}
