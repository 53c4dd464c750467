#pragma once

/// Operation that a request asks for.
enum ServiceApi : int {
    SERVICE_API_NOTIFICATION = 0,
    SERVICE_API_STATUS = 1,
    SERVICE_API_CONNECT = 2,
    SERVICE_API_DISCONNECT = 3,
    SERVICE_API_UNKNOWN = 4,
};
