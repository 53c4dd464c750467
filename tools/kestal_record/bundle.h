// What a report of an error needs besides the device: versions, the end of the log, and what the
// sources of a Linux board have told.
#pragma once

#include <string>

#include "tools/json_output.h"
#include "tools/kestal_record/record_command.h"

/// Versions of the service, its binding and the system. Neither name nor address of the machine.
Json Versions(const RecordedBinding& recorded);

/// Throws std::runtime_error if LastLogLines(@p file) could not read the file now.
void MustHaveLog(const std::string& file);

/// The last lines of the service's log: of @p file or, if that is empty, of KESTAL_LOG, or else of
/// the journal. A text that says why there are none.
Json LastLogLines(const std::string& file);

/// What the sources have told the service; a text that says why that cannot be had.
Json SourceReport(const RecordedBinding& recorded);
