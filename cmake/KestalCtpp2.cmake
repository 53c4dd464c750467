# The library of the answer tree: our own in compat/ctpp2, or an installed CTPP2, as KESTAL_CTPP2 says.
# The choice does not depend on what happens to be installed, because the two behave differently when
# memory runs out.

set(KESTAL_CTPP2 compat CACHE STRING "Answer tree: compat (compat/ctpp2), or system for an installed CTPP2")
set_property(CACHE KESTAL_CTPP2 PROPERTY STRINGS compat system)

# Sets VERSION to the version that the headers state. Fails unless a program can be built with header and
# library.
function(kestal_ctpp2_version version)
    set(program ${CMAKE_BINARY_DIR}/ctpp2-version)
    try_compile(usable
        SOURCE_FROM_CONTENT ctpp2_version.cpp [[
            #include <ctpp2/CDT.hpp>
            #include <ctpp2/CTPP2Util.hpp>
            #include <cstdio>
            #define TEXT(x) #x
            #define TEXT_OF(x) TEXT(x)
            int main() {
                std::string json;
                CTPP::CDT2JSON(CTPP::CDT(), json);
                return std::puts("CTPP_VERSION is {" TEXT_OF(CTPP_VERSION) "}");
            }
        ]]
        NO_CACHE
        CMAKE_FLAGS -DINCLUDE_DIRECTORIES=${CTPP2_INCLUDE_DIR}
        LINK_LIBRARIES ${CTPP2_LIBRARY}
        CXX_STANDARD 20
        OUTPUT_VARIABLE output
        COPY_FILE ${program})
    if(NOT usable)
        message(FATAL_ERROR
            "KESTAL_CTPP2=system: no program can be built with ${CTPP2_INCLUDE_DIR}/ctpp2 and "
            "${CTPP2_LIBRARY}:\n${output}")
    endif()
    # The macro is a text or a number. If it is not defined, its own name is printed.
    file(STRINGS ${program} found REGEX "CTPP_VERSION is {")
    string(REGEX REPLACE ".*CTPP_VERSION is {\"?([^\"}]*).*" "\\1" found "${found}")
    if(NOT found OR found STREQUAL "CTPP_VERSION")
        set(found "unknown")
    endif()
    set(${version} ${found} PARENT_SCOPE)
endfunction()

# Sets FOLDER to the folder in which installed programs must look for the library, or to nothing if their
# loader looks there anyway.
function(kestal_ctpp2_rpath folder)
    set(${folder} "" PARENT_SCOPE)
    if(NOT CTPP2_LIBRARY MATCHES "\\.so[.0-9]*$")
        return()
    endif()
    cmake_path(GET CTPP2_LIBRARY PARENT_PATH directory)
    set(standard ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES} ${CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES})
    if(directory IN_LIST standard)
        return()
    endif()
    # The sysroot becomes the root folder of the device, so it is not part of the path there.
    if(CMAKE_SYSROOT)
        cmake_path(IS_PREFIX CMAKE_SYSROOT "${directory}" NORMALIZE inside)
        if(inside)
            cmake_path(RELATIVE_PATH directory BASE_DIRECTORY "${CMAKE_SYSROOT}")
            cmake_path(ABSOLUTE_PATH directory BASE_DIRECTORY / NORMALIZE)
        endif()
    endif()
    if(NOT directory IN_LIST standard)
        set(${folder} ${directory} PARENT_SCOPE)
    endif()
endfunction()

if(KESTAL_CTPP2 STREQUAL "compat")
    message(STATUS "CTPP2: compat, our own of kestal ${PROJECT_VERSION}")
elseif(KESTAL_CTPP2 STREQUAL "system")
    find_path(CTPP2_INCLUDE_DIR ctpp2/CDT.hpp)
    # Shared or static; its own build calls the static one libctpp2-st.a, Debian's rules libctpp2.a.
    find_library(CTPP2_LIBRARY NAMES ctpp2 ctpp2-st NAMES_PER_DIR)
    set(missing "")
    if(NOT CTPP2_INCLUDE_DIR)
        list(APPEND missing "the header ctpp2/CDT.hpp")
    endif()
    if(NOT CTPP2_LIBRARY)
        list(APPEND missing "the library libctpp2.so, libctpp2.a or libctpp2-st.a")
    endif()
    if(missing)
        list(JOIN missing " and " missing)
        message(FATAL_ERROR
            "KESTAL_CTPP2=system: not found: ${missing}. Install CTPP2, name its prefix with "
            "-DCMAKE_PREFIX_PATH=..., or use our own with -DKESTAL_CTPP2=compat.")
    endif()
    kestal_ctpp2_version(KESTAL_CTPP2_VERSION)
    kestal_ctpp2_rpath(KESTAL_CTPP2_RPATH)
    message(STATUS "CTPP2: system, version ${KESTAL_CTPP2_VERSION}: ${CTPP2_LIBRARY}")
    if(KESTAL_CTPP2_RPATH)
        message(STATUS "CTPP2: the installed service looks for it in ${KESTAL_CTPP2_RPATH}, too")
    endif()
else()
    message(FATAL_ERROR "KESTAL_CTPP2 is '${KESTAL_CTPP2}'; it must be compat or system")
endif()
