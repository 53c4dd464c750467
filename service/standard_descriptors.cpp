#include "service/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

void OpenClosedStandardDescriptors() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            // Takes this number, because those below are open by now, and keeps it.
            // cppcheck-suppress leakReturnValNotUsed
            (void)open("/dev/null", O_RDWR);
        }
    }
}
