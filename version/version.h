#pragma once

/// Version of this build and, where it was built in its own git repository, the commit that was
/// checked out: "0.1.0 (0123456789ab)", or "0.1.0 (0123456789ab-dirty)" if tracked files differ
/// from that commit. An archive that git made of a commit tells that commit.
const char* KestalVersion();
