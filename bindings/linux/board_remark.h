// What people should know about the answers of this process.
#pragma once

#include <string>

namespace binding {

/// Says that the answers lack what daemons would tell, if they do; otherwise the text is empty.
/// Waits as a call that answers does.
std::string BoardRemark();

}  // namespace binding
