// System-interface SDK: queries that no other file here answers. They are generated from the
// platform's own list, so that your folder still links after platform/ has got a new query. Because
// they are weak, the linker prefers a function of the same name in another file.
#include "not_supported.h"
#include "platform/sysint_queries.h"

// NOLINTBEGIN(bugprone-macro-parentheses,cppcoreguidelines-macro-usage): a name, and a type without
// parentheses
#define NOT_SUPPORTED(Type, name, Meaning, field, description) \
    [[gnu::weak]] int sys_##name(Type* /*result*/) {           \
        return kNotSupported;                                  \
    }
SYSINT_QUERIES(NOT_SUPPORTED)
#undef NOT_SUPPORTED

#define NOT_SUPPORTED(name, Subject, field, description)                  \
    [[gnu::weak]] int sys_##name(const char* /*name*/, int* /*result*/) { \
        return kNotSupported;                                             \
    }
SYSINT_NAMED_QUERIES(NOT_SUPPORTED)
#undef NOT_SUPPORTED
// NOLINTEND(bugprone-macro-parentheses,cppcoreguidelines-macro-usage)
