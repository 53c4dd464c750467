// The part of libfcgi that accepts requests, replaced at link time: a test queues requests, the
// product serves them, and its loop ends when no request is left. Everything is recorded in the
// transcript of the recording binding.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace fake_fcgi {

using Environment = std::vector<std::string>;  ///< "NAME=value"

/// Forgets all requests; FCGX_Init and FCGX_InitRequest succeed again.
void Reset();

/// Queues a request.
void Queue(Environment environment, std::string body = "");

/// What the product wrote to the standard output of the @p index-th request.
std::string Answer(std::size_t index);

/// The next FCGX_Accept_r returns @p result and brings no request.
void QueueAcceptResult(int result);

/// Results of FCGX_Init and FCGX_InitRequest.
extern int gInitStatus;
extern int gInitRequestStatus;

}  // namespace fake_fcgi
