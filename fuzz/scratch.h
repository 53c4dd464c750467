// Files of a fuzz target.
#pragma once

#include <filesystem>
#include <string>

/// A directory for this process, which disappears at its end; in that of TMPDIR.
const std::filesystem::path& ScratchDirectory();

/// Puts @p contents into the file at @p path.
void WriteFile(const std::filesystem::path& path, const std::string& contents);

std::string ReadFile(const std::filesystem::path& path);

/// Nothing of the simulator leaves the scratch directory from now on, its log goes nowhere, yet
/// each line of it is formatted.
void ConfineSimulator();

/// Puts @p document in place of the device's. Its file has a new name, so that no two of them can
/// be taken for the same; returns its path.
std::filesystem::path PlaceDevice(const std::string& document);
