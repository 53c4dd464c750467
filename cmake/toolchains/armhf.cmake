set(KESTAL_ARCHITECTURE armhf)
set(KESTAL_TRIPLET arm-linux-gnueabihf)
set(KESTAL_EMULATOR qemu-arm)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
# Not a warning: what gcc before 7.1 did otherwise, of which nothing here is left.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
