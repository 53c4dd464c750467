// The cases of the fault matrix: the ways in which each call can fail.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Whether to run only a sample of long series, because everything is ten times slower with a
/// sanitizer or in an emulator.
#if defined(__SANITIZE_ADDRESS__) || defined(KESTAL_EMULATED)
constexpr bool kSampled = true;
#else
constexpr bool kSampled = false;
#endif

/// The code with which @p call succeeds.
int SuccessOf(const std::string& call);

/// Whether @p call returns a code, so that it can fail without an exception.
bool HasResult(const std::string& call);

/// All ways in which @p call can fail while no other call fails. A request makes it @p times times.
std::vector<Fault> FaultsOf(const std::string& call, int times);

/// One case for each way in which one of @p calls can fail. @p calls maps the name of each call to
/// the number of times that a request makes it.
std::vector<std::vector<Fault>> Singles(const std::map<std::string, int>& calls);

/// Cases in which a pair of @p calls fails, with several codes and kinds of garbage. Returns only
/// every @p stride-th case.
std::vector<std::vector<Fault>> Pairs(const std::map<std::string, int>& calls, std::size_t stride);

/// Cases in which all of @p calls, except the switch of the web UI, return a code of failure: one
/// case for each code and each kind of garbage.
std::vector<std::vector<Fault>> AllAtOnce(const std::map<std::string, int>& calls);

/// Every @p stride-th case.
std::vector<std::vector<Fault>> Sampled(const std::vector<std::vector<Fault>>& cases,
                                        std::size_t stride);
