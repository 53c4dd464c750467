// The code that a call returns if this device does not support it, or if nobody has written it yet.
//
// A call that fails must leave its result alone. So fill a zero-initialised record of your own, and
// copy it to the caller once it is complete.
#pragma once

/// A code of this binding; the platform's headers do not use it. The service logs it, and leaves
/// out of its answers what the call would have told.
constexpr int kNotSupported = 9900;
