#include "service/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

void OpenClosedStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            // open returns the lowest free number, which is this one because those below are open.
            // The descriptor is never closed.
            // cppcheck-suppress leakReturnValNotUsed
            (void)open("/dev/null", O_RDWR);
        }
    }
}
