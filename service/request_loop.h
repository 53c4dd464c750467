// The request loop and its steps.
#pragma once

#include <fcgiapp.h>

#include "platform/cgi_helper.h"

/// Serves requests one after another until the FastCGI library stops accepting. Returns 0 after a
/// normal end, or the library's status when it could not be started.
int fastcgi_main_loop();

/// The ServiceApi whose name REQUEST_URI of @p envp contains. The name may be anywhere after the
/// first five characters ("/srv/"), even in the query string.
int get_service_api(FCGX_ParamArray envp);

/// Returns 1 when session cookie, address and user agent of the caller belong to a logged-in web UI
/// session, else 0.
int GetLoginStatus(CgiHelper* helper, FCGX_Request& request);

/// Opens the system-interface SDK for one request; false when that failed.
bool InitializeSysinterface();

/// Closes it; always true.
bool UninitializeSysinterface();
