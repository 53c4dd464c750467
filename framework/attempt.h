#pragma once

#include <exception>

#include "framework/log.h"

/// Runs @p step, a part of the function with @p signature. What it throws is logged as a failure of
/// @p what and goes no further: the steps behind it still run. Returns whether it threw nothing.
template <typename Step>
bool Attempt(const char* signature, const char* what, Step step) {
    try {
        step();
        return true;
    } catch (const std::exception& error) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "[%s]:[%s] - %s - %s failed: %s", signature, what,
                            error.what());
    } catch (...) {
        KESTAL_SYSLOG_PLAIN(TORU_DBG_ERROR, "[%s]:[%s] - %s - %s failed", signature, what);
    }
    return false;
}
