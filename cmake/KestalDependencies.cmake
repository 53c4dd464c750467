include(CheckIncludeFileCXX)

find_path(FCGI_INCLUDE_DIR fcgiapp.h REQUIRED)
find_library(FCGI_LIBRARY fcgi REQUIRED)
find_library(FCGIXX_LIBRARY fcgi++ REQUIRED)
add_library(kestal_fcgi INTERFACE)
target_include_directories(kestal_fcgi SYSTEM INTERFACE ${FCGI_INCLUDE_DIR})
target_link_libraries(kestal_fcgi INTERFACE ${FCGIXX_LIBRARY} ${FCGI_LIBRARY})

find_path(CGICC_INCLUDE_DIR cgicc/Cgicc.h REQUIRED)
find_library(CGICC_LIBRARY cgicc REQUIRED)
add_library(kestal_cgicc INTERFACE)
target_include_directories(kestal_cgicc SYSTEM INTERFACE ${CGICC_INCLUDE_DIR})
target_link_libraries(kestal_cgicc INTERFACE ${CGICC_LIBRARY})

find_path(UTF8_INCLUDE_DIR utf8.h REQUIRED)
add_library(kestal_utf8 INTERFACE)
target_include_directories(kestal_utf8 SYSTEM INTERFACE ${UTF8_INCLUDE_DIR})

find_program(KESTAL_MSGFMT msgfmt REQUIRED)

# Any python3 builds the product. /usr/bin is searched before PATH, because the tests need pytest, and
# Debian's package python3-pytest is only for Debian's interpreter.
find_program(KESTAL_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(KESTAL_PYTHON python3 REQUIRED)

# Libraries that Debian does not package; compat/ replaces them.
include(KestalCtpp2)
find_path(CGICC_FCGIIO_INCLUDE_DIR cgicc/FCgiIO.h)

# Libraries of the command-line tools.
find_package(CLI11 2.1 REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)

if(NOT KESTAL_PLATFORM STREQUAL vendor OR KESTAL_TESTS)
    find_program(KESTAL_LOCALEDEF localedef REQUIRED)
    find_path(KESTAL_LOCALE_SOURCES de_DE PATHS /usr/share/i18n/locales REQUIRED
        NO_CMAKE_FIND_ROOT_PATH)
endif()

if(KESTAL_TESTS)
    find_package(GTest REQUIRED)
endif()

# Precompiled headers are only for developers, who compile everything again and again; the product is
# built without.
if(KESTAL_TESTS OR KESTAL_FUZZ)
    kestal_add_precompiled(kestal_json_headers
        HEADERS <nlohmann/json.hpp>
        LINKS nlohmann_json::nlohmann_json)
endif()
if(KESTAL_TESTS)
    kestal_add_precompiled(kestal_gtest_headers HEADERS <gtest/gtest.h> LINKS GTest::gmock)
    # For tests most of whose files need gmock, because this header takes longer to load.
    kestal_add_precompiled(kestal_gmock_headers HEADERS <gmock/gmock.h> <gtest/gtest.h> LINKS GTest::gmock)
endif()
