// The session store. The input is its file.
#include <algorithm>
#include <exception>

#include "bindings/posix/session/session_login.h"
#include "bindings/posix/session/session_store.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "platform/auth_session.h"

namespace {

bool IsStore(const std::string& text) {
    try {
        (void)binding::ReadSessions(text);
        return true;
    } catch (const std::exception& error) {
        Require(*error.what() != '\0', "an error says what is wrong");
        return false;
    }
}

bool IsLoggedIn(const std::string& identifier) {
    webui_addr_t address{};
    address.family = 2;
    address.address[0] = 127;
    address.address[3] = 1;
    AuthSession session;
    bool loggedIn = false;
    return session.Init(identifier, address, "fuzz", 2) == 0 && session.LoggedOn(loggedIn) == 0 &&
           loggedIn;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ConfineSimulator();
    const std::string text = InputText(data, size);
    const std::filesystem::path store = binding::SessionStorePath();
    WriteFile(store, text);
    const bool isStore = IsStore(text);
    Require(!IsLoggedIn("unknown"), "nobody is logged in without a session", text);
    try {
        const std::string identifier =
            binding::IdentifierIn(binding::OpenSession("127.0.0.1", "fuzz", 1000));
        Require(isStore, "a damaged store takes no session", text);
        Require(IsLoggedIn(identifier), "who has opened a session is logged in", text);
        const auto live = binding::LiveSessions();
        Require(live.size() <= binding::ReadSessions(text).size() + 1, "no session comes alone");
        binding::CloseSession(identifier);
        Require(!IsLoggedIn(identifier), "who has closed the session is logged in no more", text);
        Require(binding::LiveSessions().size() == live.size() - 1, "one session was closed");
    } catch (const std::exception&) {
        Require(!isStore, "a good store takes a session", text);
        Require(ReadFile(store) == text, "a damaged store stays as it is", text);
    }
    std::filesystem::remove(store);
    return 0;
}
