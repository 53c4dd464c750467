#pragma once

#include <exception>

#include "framework/log.h"

/// Runs @p step, a part of the function with @p signature. What it throws goes no further, so that
/// the steps behind it still run; it is logged as a failure of @p name, which tells this step from
/// the others of the function. Returns whether the step threw nothing.
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
