set(KESTAL_ARCHITECTURE armhf)
set(KESTAL_TRIPLET arm-linux-gnueabihf)
set(KESTAL_EMULATOR qemu-arm)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
# No warning about calls that gcc before 7.1 compiled differently, because nothing here was built with
# it.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
