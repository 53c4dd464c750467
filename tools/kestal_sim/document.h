// Access of the commands of kestal-sim to the device's document.
#pragma once

#include <filesystem>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

/// The contents of the file @p file. Throws std::exception if it cannot be read.
std::string Contents(const std::string& file);

/// The document of the device. Throws std::exception if it is missing or has faults.
nlohmann::ordered_json CurrentDocument();

/// Changes the document of the device with @p change, see binding::ChangeDevice.
void ChangeDocument(const std::function<void(nlohmann::ordered_json&)>& change);

/// @p text parsed as JSON; the text itself when it is not JSON.
nlohmann::ordered_json ValueOf(const std::string& text);

/// The folder of the shipped files of the kind @p folder, "devices" or "scenarios": that of the
/// sources for a program in their build, otherwise the installed one.
std::filesystem::path ShippedFolder(const std::string& folder);

/// The path of the file @p name, or of the shipped file in @p folder with that name.
std::string FileNamed(const std::string& name, const std::string& folder);
