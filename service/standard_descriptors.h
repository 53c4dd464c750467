#pragma once

/// Opens /dev/null as standard input, output or error if that is closed. Otherwise the next
/// descriptor that is opened would get its number: a connection could become standard error, and
/// log lines would be sent to the web server.
void OpenClosedStandardDescriptors();
