// kestal-messages: shows the messages that the modem of a Linux board has received, and remembers
// which of them have been read.
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "bindings/linux/modem/message_store.h"
#include "tools/kestal_messages/message_list.h"
#include "tools/kestal_sources/source_report.h"
#include "tools/tool.h"

namespace {

void List(const Arguments& /*arguments*/, std::ostream& out) {
    WriteMessageList(out, MessagesIn(ReadReport()));
}

void Read(const Arguments& arguments, std::ostream& out) {
    const auto messages = MessagesNamed(MessagesIn(ReadReport()), arguments.Value("message"));
    std::vector<std::string> keys;
    for (const ReceivedMessage& message : messages) {
        WriteMessage(out, message);
        keys.push_back(message.key);
    }
    // What could not be shown has not been read.
    if (out.flush()) {
        binding::MarkMessagesRead(binding::MessageStorePath(), keys);
    }
}

Tool MessagesTool() {
    return {.name = "kestal-messages",
            .description = "Shows the messages that this board has received.",
            .codes = {},
            .commands = {{.names = {"list"},
                          .description = "Lists the messages; a star marks those not read yet",
                          .run = List},
                         {.names = {"read"},
                          .description = "Shows messages and marks them as read",
                          .parameters = {{.name = "message",
                                          .description = "Its id in the list, or unread for all "
                                                         "that have not been read"}},
                          .run = Read}},
            .settings = {SocketSetting()}};
}

}  // namespace

int main(int argc, char** argv) {
    return RunTool(MessagesTool(), argc, argv);
}
