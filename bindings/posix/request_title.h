// What the request of a thread is called, for whoever watches the calls that it makes.
#pragma once

#include <string_view>

namespace binding {

/// Notes that the calling thread serves a request of the method @p method for the target @p script
/// + @p path. Allocates nothing; what is too long is cut.
void NoteRequest(std::string_view method, std::string_view script, std::string_view path);

/// Such as "GET /srv/status"; empty if nothing has been noted since the last call. Stays valid
/// until the thread notes the next request.
std::string_view TakeRequestTitle();

}  // namespace binding
