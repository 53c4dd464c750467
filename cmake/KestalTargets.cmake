# Functions that add targets. With KESTAL_TESTS, each library and each unit test exists twice: NAME, and
# NAME_san with address and undefined-behaviour sanitizers.

include(CheckCXXCompilerFlag)

add_library(kestal_options INTERFACE)
target_compile_features(kestal_options INTERFACE cxx_std_20)
target_include_directories(kestal_options INTERFACE ${PROJECT_SOURCE_DIR})
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Without these, stat fails for files with large inode numbers, and times end in 2038.
    target_compile_definitions(kestal_options INTERFACE _FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
target_compile_options(kestal_options INTERFACE
    -Wall -Wextra -Werror -Wshadow -Wformat=2 -Wconversion -Wsign-conversion -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wundef
    # gcc 12 wrongly reports overlapping copies in every assignment of a literal to a std::string.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)

if(KESTAL_SANITIZE)
    target_compile_options(kestal_options INTERFACE
        -fsanitize=${KESTAL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(kestal_options INTERFACE -fsanitize=${KESTAL_SANITIZE})
endif()

if(KESTAL_COVERAGE)
    target_compile_options(kestal_options INTERFACE --coverage)
    target_link_options(kestal_options INTERFACE --coverage)
endif()

# Ends the process when an index or iterator is beyond its container.
target_compile_definitions(kestal_options INTERFACE _GLIBCXX_ASSERTIONS)

# Hardening, wherever the compiler optimises.
target_compile_options(kestal_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-fstack-protector-strong -fstack-clash-protection -fPIE
                        -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3>)
# Not every compiler and processor has these: variables start as zero; indirect jumps reach only marked
# targets (x86, 64-bit ARM).
foreach(flag -ftrivial-auto-var-init=zero -fcf-protection -mbranch-protection=standard)
    string(MAKE_C_IDENTIFIER "KESTAL_HAS${flag}" has)
    # clang only warns of a flag for another processor.
    set(CMAKE_REQUIRED_FLAGS -Werror)
    check_cxx_compiler_flag(${flag} ${has})
    unset(CMAKE_REQUIRED_FLAGS)
    if(${has})
        target_compile_options(kestal_options INTERFACE $<$<NOT:$<CONFIG:Debug>>:${flag}>)
    endif()
endforeach()
# Makes the result of a build independent of its folder, byte for byte.
target_compile_options(kestal_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build>)
target_link_options(kestal_options INTERFACE
    $<$<NOT:$<CONFIG:Debug>>:-pie -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,--as-needed>)

add_library(kestal_options_san INTERFACE)
target_compile_options(kestal_options_san INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
target_link_options(kestal_options_san INTERFACE -fsanitize=address,undefined)

set(KESTAL_TWINS OFF)
# The sanitizers do not run in an emulator.
if(KESTAL_TESTS AND NOT KESTAL_SANITIZE AND NOT KESTAL_COVERAGE AND NOT CMAKE_CROSSCOMPILING)
    set(KESTAL_TWINS ON)
endif()

# kestal_unify(TARGET [APART source...]): lets the compiler read sources of TARGET together, so that it reads the
# headers that they share, and instantiates their templates, once. The sources after APART keep object files of
# their own. This is for sanitized twins only: elsewhere, each source is compiled on its own, which shows an
# include that is missing.
function(kestal_unify target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "APART")
    get_target_property(sources ${target} SOURCES)
    list(REMOVE_ITEM sources ${arg_APART})
    list(FILTER sources INCLUDE REGEX "^[^$]*\\.cpp$")
    list(TRANSFORM sources PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
    list(LENGTH sources count)
    if(count LESS 2)
        return()
    endif()
    execute_process(
        COMMAND ${KESTAL_PYTHON} ${PROJECT_SOURCE_DIR}/scripts/together.py 12 ${sources}
        OUTPUT_VARIABLE groups
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
    foreach(source group IN ZIP_LISTS sources groups)
        set_source_files_properties(${source} PROPERTIES UNITY_GROUP ${target}_${group})
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    # Names of one source may hide those of another, and types of an included file may have local parts.
    target_compile_options(${target} PRIVATE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
endfunction()

# Links LIBRARIES to the sanitized twin NAME_san: each library's own twin if it has one.
function(kestal_link_twin name)
    foreach(library ${ARGN})
        if(TARGET ${library}_san)
            set(library ${library}_san)
        endif()
        target_link_libraries(${name}_san PUBLIC ${library})
    endforeach()
endfunction()

# kestal_add_library(NAME [OBJECT] SOURCES ... [APART source...] [INCLUDES dir...] [LINKS library...]
#                    [DEFINITIONS ...])
#
# With OBJECT, all of its object files are linked, and their functions take precedence over functions of
# the same name in other libraries. Some programs lack what the sources after APART need, and do not link
# their object files, so that these hold nothing else in the twin either.
function(kestal_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "OBJECT" "" "SOURCES;APART;INCLUDES;LINKS;DEFINITIONS")
    set(kind STATIC)
    if(arg_OBJECT)
        set(kind OBJECT)
    endif()
    add_library(${name} ${kind} ${arg_SOURCES})
    target_include_directories(${name} PUBLIC ${arg_INCLUDES})
    target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
    target_link_libraries(${name} PUBLIC kestal_options ${arg_LINKS})
    if(KESTAL_TWINS)
        add_library(${name}_san ${kind} EXCLUDE_FROM_ALL ${arg_SOURCES})
        target_include_directories(${name}_san PUBLIC ${arg_INCLUDES})
        target_compile_definitions(${name}_san PRIVATE ${arg_DEFINITIONS})
        target_link_libraries(${name}_san PUBLIC kestal_options kestal_options_san)
        kestal_link_twin(${name} ${arg_LINKS})
        kestal_unify(${name}_san APART ${arg_APART})
    endif()
endfunction()

# kestal_add_precompiled(NAME HEADERS header... [LINKS library...]): precompiles headers that take longer
# to read than the rest of most files that include them.
function(kestal_add_precompiled name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;LINKS")
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "")
    kestal_add_library(${name} OBJECT SOURCES ${source} LINKS ${arg_LINKS})
    foreach(target ${name} ${name}_san)
        if(TARGET ${target})
            set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
            target_precompile_headers(${target} PRIVATE ${arg_HEADERS})
        endif()
    endforeach()
endfunction()

# kestal_use_precompiled(TARGET NAME [WORD]): compiles TARGET and its twin with the precompiled headers
# NAME, if this build has them. With WORD, only the sources that contain it: for others, loading the
# headers takes longer than all the rest.
function(kestal_use_precompiled target name)
    if(NOT TARGET ${name})
        return()
    endif()
    if(ARGC GREATER 2)
        get_target_property(sources ${target} SOURCES)
        foreach(source ${sources})
            file(STRINGS ${source} lines REGEX ${ARGV2} LIMIT_COUNT 1)
            if(NOT lines)
                set_source_files_properties(${source} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
            endif()
        endforeach()
    endif()
    target_precompile_headers(${target} REUSE_FROM ${name})
    if(TARGET ${target}_san)
        target_precompile_headers(${target}_san REUSE_FROM ${name}_san)
    endif()
endfunction()

# lld links a test in a third of the time of the usual linker, with which all installed programs are linked.
set(KESTAL_LLD "")
if((KESTAL_TESTS OR KESTAL_FUZZ) AND NOT CMAKE_CROSSCOMPILING)
    find_program(KESTAL_LLD_PROGRAM ld.lld)
    if(KESTAL_LLD_PROGRAM)
        set(KESTAL_LLD -fuse-ld=lld)
    endif()
endif()

# The recording binding is linked as a whole. It comes before the product libraries that the tested
# libraries bring along, so a static link would leave out what only these need.
function(kestal_link_test name twin)
    target_link_options(${name} PRIVATE ${KESTAL_LLD})
    foreach(library ${ARGN})
        if(twin AND TARGET ${library}_san)
            set(library ${library}_san)
        endif()
        if(library MATCHES "^kestal_recording")
            set(library $<LINK_LIBRARY:WHOLE_ARCHIVE,${library}>)
        endif()
        target_link_libraries(${name} PRIVATE ${library})
    endforeach()
endfunction()

# For tests that limit memory: the program's own calls of calloc go to its __wrap_calloc. A function with
# the name calloc could not replace a sanitizer's.
add_library(kestal_wrapped_calloc INTERFACE)
target_link_options(kestal_wrapped_calloc INTERFACE -Wl,--wrap=calloc)

# kestal_add_suites(NAME LABELS): adds a CTest test for each suite of the GoogleTest program NAME, once
# NAME has been built.
function(kestal_add_suites name labels)
    set(suites ${CMAKE_CURRENT_BINARY_DIR}/${name}_suites.cmake)
    set(tests ${CMAKE_CURRENT_BINARY_DIR}/${name}_tests.cmake)
    file(CONFIGURE OUTPUT ${tests} @ONLY CONTENT [=[
if(EXISTS "@suites@")
    include("@suites@")
else()
    add_test(@name@_NOT_BUILT @name@_NOT_BUILT)
endif()
]=])
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${tests})
    get_target_property(command ${name} CROSSCOMPILING_EMULATOR)
    if(NOT command)
        set(command)
    endif()
    list(APPEND command $<TARGET_FILE:${name}>)
    list(JOIN command "|" command)
    # The longest tests take minutes when other programs keep the processors busy.
    set(properties "LABELS [==[${labels}]==] TIMEOUT 900")
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -D name=${name} -D program=${command} -D "properties=${properties}"
            -D output=${suites} -P ${PROJECT_SOURCE_DIR}/cmake/list_suites.cmake
        BYPRODUCTS ${suites}
        VERBATIM)
endfunction()

# The plain unit tests, which scripts/test runs before it builds anything else.
add_custom_target(kestal_unit_tests)

# kestal_add_unit_test(NAME SOURCES ... [LINKS library...] [DEFINITIONS definition...]
#                      [PRECOMPILED name] [COMPILED_ONCE])
#
# With COMPILED_ONCE, the test's own code is not sanitized in the twin: only the libraries it tests are.
# That halves the time that building the test takes. It is for tests of bindings and tools. Where a test
# reads memory that the product hands out, or instantiates its templates, the sanitizers must see the
# test, too.
function(kestal_add_unit_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "COMPILED_ONCE" "PRECOMPILED" "SOURCES;LINKS;DEFINITIONS")
    if(NOT arg_PRECOMPILED)
        set(arg_PRECOMPILED kestal_gtest_headers)
    endif()
    if(arg_COMPILED_ONCE)
        add_library(${name}_objects OBJECT ${arg_SOURCES})
        target_link_libraries(${name}_objects PRIVATE kestal_options GTest::gmock ${arg_LINKS})
        target_compile_definitions(${name}_objects PRIVATE ${arg_DEFINITIONS})
        kestal_use_precompiled(${name}_objects ${arg_PRECOMPILED})
        set(arg_SOURCES $<TARGET_OBJECTS:${name}_objects>)
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE kestal_options GTest::gmock GTest::gtest_main)
    kestal_link_test(${name} OFF ${arg_LINKS})
    target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
    kestal_emulate(${name})
    kestal_add_suites(${name} "unit;plain")
    add_dependencies(kestal_unit_tests ${name})
    if(KESTAL_TWINS)
        add_executable(${name}_san ${arg_SOURCES})
        target_link_libraries(${name}_san PRIVATE kestal_options kestal_options_san
            GTest::gmock GTest::gtest_main)
        kestal_link_test(${name}_san ON ${arg_LINKS})
        target_compile_definitions(${name}_san PRIVATE ${arg_DEFINITIONS})
        kestal_unify(${name}_san)
        kestal_add_suites(${name}_san "unit;sanitized")
    endif()
    if(NOT arg_COMPILED_ONCE)
        kestal_use_precompiled(${name} ${arg_PRECOMPILED})
    endif()
endfunction()

# Builds the generated headers, which clang-tidy needs besides the sources.
add_custom_target(kestal_generated_headers)

# NAME and its twin can include declared_calls.h, which lists the calls that platform/ declares.
function(kestal_list_declared_calls name)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/platform/*.h)
    set(script ${PROJECT_SOURCE_DIR}/cmake/declared_calls.py)
    set(list ${CMAKE_CURRENT_BINARY_DIR}/declared_calls.h)
    add_custom_command(OUTPUT ${list}
        COMMAND ${KESTAL_PYTHON} ${script} ${list} ${headers}
        DEPENDS ${script} ${headers}
        VERBATIM)
    add_custom_target(${name}_declared_calls DEPENDS ${list})
    add_dependencies(kestal_generated_headers ${name}_declared_calls)
    foreach(target ${name} ${name}_san)
        if(TARGET ${target})
            target_sources(${target} PRIVATE ${list})
            target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
        endif()
    endforeach()
endfunction()
