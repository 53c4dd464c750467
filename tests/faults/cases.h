// The cases of the matrix: which calls there are and in which ways each can fail.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Whether only a sample of long series is run, because a sanitizer or an emulator makes everything
/// ten times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(KESTAL_EMULATED)
constexpr bool kSampled = true;
#else
constexpr bool kSampled = false;
#endif

/// The code with which @p call succeeds.
int SuccessOf(const std::string& call);

/// Whether @p call can fail by its result.
bool HasResult(const std::string& call);

/// Every way in which @p call, made @p times times in a request, fails alone.
std::vector<Fault> FaultsOf(const std::string& call, int times);

/// The faults of all of @p calls, names and how often they are made, one case for each.
std::vector<std::vector<Fault>> Singles(const std::map<std::string, int>& calls);

/// Pairs of @p calls that fail together, with several codes and kinds of garbage, one case for
/// each. Only every @p stride-th case is returned.
std::vector<std::vector<Fault>> Pairs(const std::map<std::string, int>& calls, std::size_t stride);

/// Cases in which all of @p calls except for the switch of the web UI fail at once by their result:
/// one case for each code and each kind of garbage.
std::vector<std::vector<Fault>> AllAtOnce(const std::map<std::string, int>& calls);

/// Every @p stride-th case.
std::vector<std::vector<Fault>> Sampled(const std::vector<std::vector<Fault>>& cases,
                                        std::size_t stride);
