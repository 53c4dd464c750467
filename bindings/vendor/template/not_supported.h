// What a call answers that this device does not support, or that nobody has written yet.
//
// A call that fails must leave its result alone. So collect what a record needs in one of your own
// that begins as zeros, and copy it to the caller when all is known.
#pragma once

/// A code of this binding's own: the platform's headers use none that is like it. The service logs
/// it, and leaves out of its answers what it would have learned.
constexpr int kNotSupported = 9900;
