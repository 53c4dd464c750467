#pragma once

/// Result of a component operation.
enum PageError : int {
    PAGE_ERROR_NONE = 0,    ///< the operation succeeded
    PAGE_ERROR_FAILED = 1,  ///< the operation failed or the request is not supported
};
