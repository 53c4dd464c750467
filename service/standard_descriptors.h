#pragma once

/// Opens /dev/null as standard input, output and error where they are closed. The next descriptor
/// to be opened takes the lowest number that is free: a connection would become standard error, and
/// log lines would go to the web server.
void OpenClosedStandardDescriptors();
