// Temporary files of a fuzz target.
#pragma once

#include <filesystem>
#include <string>

/// A directory of this process under TMPDIR. It is removed when the process ends.
const std::filesystem::path& ScratchDirectory();

/// Puts @p contents into the file at @p path.
void WriteFile(const std::filesystem::path& path, const std::string& contents);

std::string ReadFile(const std::filesystem::path& path);

/// Makes the simulator keep all of its files in the scratch directory. Its log is formatted, line
/// by line, and discarded.
void ConfineSimulator();

/// Makes @p document the document of the simulated device and returns the path of its file. Each
/// file has a new name, so that the simulator cannot mistake it for one that it has already read.
std::filesystem::path PlaceDevice(const std::string& document);
