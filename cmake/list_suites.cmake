# cmake -D name=... -D program=... -D properties=... -D output=... -P list_suites.cmake
#
# Writes one CTest test for each suite of the GoogleTest program, a command in which | separates the
# arguments. There is no test for each case, because starting a process takes longer than most cases.

string(REPLACE "|" ";" command "${program}")
execute_process(COMMAND ${command} --gtest_list_tests
    OUTPUT_VARIABLE listing
    RESULT_VARIABLE result
    TIMEOUT 60)
if(NOT result EQUAL 0)
    file(REMOVE ${output})
    message(FATAL_ERROR "${program} does not list its tests: ${result}")
endif()

set(tests)
list(TRANSFORM command REPLACE "(.+)" "[==[\\1]==]")
list(JOIN command " " command)
string(REGEX MATCHALL "\n[^ \n]+\\." suites "\n${listing}")
foreach(suite ${suites})
    string(REGEX REPLACE "\n(.+)\\." "\\1" suite "${suite}")
    string(APPEND tests
        "add_test([==[${name}.${suite}]==] ${command} [==[--gtest_filter=${suite}.*]==])\n"
        "set_tests_properties([==[${name}.${suite}]==] PROPERTIES ${properties})\n")
endforeach()
file(WRITE ${output} "${tests}")
