// The device's document as the commands of kestal-sim use it.
#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>

/// What is in the file @p file. Throws std::exception.
std::string Contents(const std::string& file);

/// The document of the device. Throws std::exception unless it is a good one.
nlohmann::ordered_json CurrentDocument();

/// Changes the document of the device with @p change, see binding::ChangeDevice.
void ChangeDocument(const std::function<void(nlohmann::ordered_json&)>& change);

/// The JSON value that @p text is; the text itself when it is not JSON.
nlohmann::ordered_json ValueOf(const std::string& text);

/// The file @p name, or the one that is installed in @p folder under that name.
std::string FileNamed(const std::string& name, const std::string& folder);
