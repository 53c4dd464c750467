# Writes FILE, which contains VERSION and the commit that is checked out in FOLDER, and SOURCE, from
# version.cpp.in, with the same text. Without GIT, or where FOLDER is not the top of a repository, such
# as in an archive that was unpacked inside another repository, the commit is what git archive has written
# into FOLDER/version/commit; if it has written nothing, the version names no commit.

cmake_minimum_required(VERSION 3.25)

# git refuses a folder of another user, as in a container, unless it is declared safe. Without optional
# locks, it does not write to the repository.
set(command ${git} --no-optional-locks -c safe.directory=${folder} -C ${folder})

set(commit "")
if(git)
    # Variables such as GIT_DIR would lead to another repository than that of the folder.
    execute_process(COMMAND ${git} rev-parse --local-env-vars OUTPUT_VARIABLE names)
    string(REGEX MATCHALL "[A-Z_]+" names "${names}")
    foreach(name ${names})
        unset(ENV{${name}})
    endforeach()
    execute_process(
        COMMAND ${command} rev-parse --show-prefix HEAD
        OUTPUT_VARIABLE told ERROR_QUIET RESULT_VARIABLE failed)
    if(NOT failed AND told MATCHES "^\n([0-9a-f]+)\n$")
        string(SUBSTRING ${CMAKE_MATCH_1} 0 12 commit)
        execute_process(
            COMMAND ${command} status --porcelain --untracked-files=no
            OUTPUT_VARIABLE changes)
        if(changes)
            string(APPEND commit "-dirty")
        endif()
    endif()
endif()
if(NOT commit AND EXISTS ${folder}/version/commit)
    file(READ ${folder}/version/commit told)
    # As it is in the repository, the file holds no commit but the place for one.
    if(told MATCHES "^([0-9a-f]+)\n$")
        string(SUBSTRING ${CMAKE_MATCH_1} 0 12 commit)
    endif()
endif()
if(commit)
    string(APPEND version " (${commit})")
endif()
# Neither touches its file if the contents would be the same.
file(CONFIGURE OUTPUT ${file} CONTENT "@version@" @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/version.cpp.in ${source} @ONLY)
