// The document of the board, which the owner writes.
#pragma once

#include <string>

#include "bindings/device/device.h"
#include "bindings/linux/settings.h"

namespace binding {

struct BoardDocument {
    Device device;  ///< what the document says in place of the sources
    Settings settings;
};

/// Path of the document: the environment variable KESTAL_DEVICE, or the installed one.
std::string BoardDocumentPath();

/// Compiles the document @p text: that of a simulated device, with an object "linux" for the
/// settings. Throws std::runtime_error, whose text begins with @p file and the line, when anything
/// in it is wrong. For @p earlier, see ReadDevice.
BoardDocument ReadBoardDocument(const std::string& file, const std::string& text,
                                const Faults& earlier = {});

/// Replaces each answer of @p device that @p document names, too.
void Overlay(Device& device, const Device& document);

}  // namespace binding
