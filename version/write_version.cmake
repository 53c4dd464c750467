# Writes SOURCE, from version.cpp.in, with VERSION and the commit that is checked out in FOLDER. Without
# GIT, or where FOLDER is not the top of a repository, such as in an archive that was unpacked inside
# another repository, the version names no commit.

if(git)
    # git refuses a folder of another user, as in a container, unless it is declared safe.
    execute_process(
        COMMAND ${git} -c safe.directory=${folder} -C ${folder} rev-parse --show-prefix HEAD
        OUTPUT_VARIABLE told ERROR_QUIET RESULT_VARIABLE failed)
    if(NOT failed AND told MATCHES "^\n([0-9a-f]+)\n$")
        string(SUBSTRING ${CMAKE_MATCH_1} 0 12 commit)
        string(APPEND version " (${commit})")
    endif()
endif()
# Does not touch the file if its contents would be the same.
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.cpp.in ${source} @ONLY)
