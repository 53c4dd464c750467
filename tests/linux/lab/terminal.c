/* Loaded into ModemManager in front of umockdev, which does not know this request of terminals. Without
   it, ModemManager cannot take a port for itself and gives the modem up. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdarg.h>
#include <sys/ioctl.h>

int ioctl(int descriptor, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (request == TIOCEXCL) {
        return 0;
    }
    int (*next)(int, unsigned long, ...) = (int (*)(int, unsigned long, ...))dlsym(RTLD_NEXT, "ioctl");
    return next(descriptor, request, argument);
}
