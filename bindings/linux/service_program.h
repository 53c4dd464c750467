// Whether the program that this binding is part of is the service.
#pragma once

namespace binding {

/// True in the service only: its program links another file for it than all others do. A variable
/// of the environment could not say it, because tools that ask the service have the same ones.
extern const bool kIsService;

}  // namespace binding
