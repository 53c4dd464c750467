// The report that the service of a Linux board gives on its sources.
#pragma once

#include <iosfwd>
#include <string>

#include "tools/json_output.h"
#include "tools/tool.h"

/// The option --socket of tools that ask the service.
Setting SocketSetting();

/// Asks the service that listens where the option --socket says, or KESTAL_SOURCES, or else at
/// /run/kestal/sources.
Json ReadReport();

/// Asks the service that listens at @p path. Throws std::runtime_error when there is none, or when
/// it does not answer with a report within some seconds.
Json ReadReport(const std::string& path);

/// Writes one line for each source: name, state, since when, and why it is lost.
void WriteSources(std::ostream& out, const Json& report);

/// The part of @p report on the source @p name. Throws std::runtime_error, which lists the names,
/// when there is none.
Json SourceNamed(const Json& report, const std::string& name);
