// The cases of the matrix: which calls there are and in which ways each can fail.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "tests/faults/device.h"

/// Whether a sanitizer or an emulator makes everything an order slower; long series are sampled
/// then.
#if defined(__SANITIZE_ADDRESS__) || defined(KESTAL_EMULATED)
constexpr bool kSampled = true;
#else
constexpr bool kSampled = false;
#endif

/// The success of @p call.
int SuccessOf(const std::string& call);

/// Whether @p call can fail by its result.
bool HasResult(const std::string& call);

/// Every way in which @p call, made @p times times in a request, fails alone.
std::vector<Fault> FaultsOf(const std::string& call, int times);

/// The faults of all of @p calls, names and how often they are made, one case for each.
std::vector<std::vector<Fault>> Singles(const std::map<std::string, int>& calls);

/// Each two of @p calls with several codes and garbage, one case for each; of these, each
/// @p stride-th.
std::vector<std::vector<Fault>> Pairs(const std::map<std::string, int>& calls, std::size_t stride);

/// All of @p calls at once, but for the switch of the web UI, by result; one case for each code and
/// each garbage.
std::vector<std::vector<Fault>> AllAtOnce(const std::map<std::string, int>& calls);

/// Every @p stride-th case.
std::vector<std::vector<Fault>> Sampled(const std::vector<std::vector<Fault>>& cases,
                                        std::size_t stride);
