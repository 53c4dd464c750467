// What people should know about the answers of this process.
#pragma once

#include <string>

namespace binding {

/// Says so if a source has not said whether it is there, or the system bus does not answer;
/// otherwise the text is empty.
/// Waits as a call that answers does.
std::string BoardRemark();

}  // namespace binding
