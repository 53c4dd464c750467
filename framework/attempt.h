#pragma once

#include <exception>

#include "framework/log.h"

/// Runs @p step, a part of the function with @p signature, and catches what it throws. A step
/// throws when memory is short or a library of the platform throws. Uncaught, that would end the
/// process and with it all answers; so each step that the others can do without is attempted on its
/// own, and those that follow still run. The exception is logged as a failure of @p name, which
/// tells this step from the others of the function. Returns true if the step did not throw.
template <typename Step>
bool Attempt(const char* signature, const char* name, Step step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        KESTAL_FAILURE("%s failed: %s", name, error.what());
    } catch (...) {
        KESTAL_FAILURE("%s failed", name);
    }
    return false;
}
