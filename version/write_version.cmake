# Writes SOURCE, from version.cpp.in, with VERSION and the commit that is checked out in FOLDER. Without
# GIT, or where FOLDER is not the top of a repository, such as in an unpacked archive that lies in
# someone else's, there is no commit.

if(git)
    # The folder may belong to someone else, as in a container.
    execute_process(
        COMMAND ${git} -c safe.directory=${folder} -C ${folder} rev-parse --show-prefix HEAD
        OUTPUT_VARIABLE told ERROR_QUIET RESULT_VARIABLE failed)
    if(NOT failed AND told MATCHES "^\n([0-9a-f]+)\n$")
        string(SUBSTRING ${CMAKE_MATCH_1} 0 12 commit)
        string(APPEND version " (${commit})")
    endif()
endif()
# Leaves a file alone that is as it should be.
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.cpp.in ${source} @ONLY)
