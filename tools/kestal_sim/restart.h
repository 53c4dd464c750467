// Starting services anew.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <vector>

/// The processes of the services that run on the document @p device. Throws std::runtime_error when
/// there is none.
std::vector<pid_t> ServicesOn(const std::filesystem::path& device);

/// Ends the processes @p before, which run on the document @p device, and waits until others run in
/// their place, which the web server starts. Throws std::runtime_error when one does not end or no
/// other one starts.
void RestartServices(const std::filesystem::path& device, const std::vector<pid_t>& before);
