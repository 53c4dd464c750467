// Starting services anew.
#pragma once

#include <filesystem>

/// Ends the services that run on the document @p device and waits until others run in their place,
/// which the web server starts. Throws std::runtime_error when there is no such service, and when
/// it does not end or no other one starts.
void RestartServices(const std::filesystem::path& device);
