# Debian's cross compiler, with the libraries that scripts/cross-test unpacks into build/root-ARCH.
# Programs are compiled with the C and C++ libraries of the compiler, and run with those in the root.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER ${KESTAL_TRIPLET}-g++)

cmake_path(SET root NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../../build/root-${KESTAL_ARCHITECTURE})
set(KESTAL_TARGET_ROOT ${root} CACHE PATH "Libraries and headers of the target")
if(NOT EXISTS ${KESTAL_TARGET_ROOT}/usr)
    message(FATAL_ERROR "There is nothing in ${KESTAL_TARGET_ROOT}; scripts/cross-test fetches it")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KESTAL_TARGET_ROOT)

# Only programs are taken from this machine, no libraries, headers or packages.
set(CMAKE_FIND_ROOT_PATH ${KESTAL_TARGET_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

find_program(KESTAL_EMULATOR_PROGRAM ${KESTAL_EMULATOR} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR ${KESTAL_EMULATOR_PROGRAM} -L ${KESTAL_TARGET_ROOT})
