#include "bindings/posix/request_title.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace binding {

namespace {

/// Room for what is noted in a thread, so that noting cannot fail.
struct Title {
    std::array<char, 96> text{};
    std::size_t size = 0;

    void Append(std::string_view more) {
        const std::size_t count = std::min(more.size(), text.size() - size);
        std::copy_n(more.begin(), count, text.data() + size);
        size += count;
    }
};

thread_local constinit Title title;

}  // namespace

void NoteRequest(std::string_view method, std::string_view script, std::string_view path) {
    title.size = 0;
    title.Append(method);
    title.Append(" ");
    title.Append(script);
    title.Append(path);
}

std::string_view TakeRequestTitle() {
    const std::string_view taken(title.text.data(), title.size);
    title.size = 0;
    return taken;
}

}  // namespace binding
