# Lets tests start programs for another processor like any other program.

# kestal_runnable(VARIABLE TARGET): sets VARIABLE to the path with which the program TARGET is started on
# this machine: the program itself or, in a cross build, a script that starts it in the emulator. The
# process has the program's name, as it would without an emulator.
function(kestal_runnable variable target)
    if(NOT CMAKE_CROSSCOMPILING_EMULATOR)
        set(${variable} $<TARGET_FILE:${target}> PARENT_SCOPE)
        return()
    endif()
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    set(folder ${PROJECT_BINARY_DIR}/emulated)
    set(${variable} ${folder}/${name} PARENT_SCOPE)
    get_property(made TARGET ${target} PROPERTY KESTAL_RUNNABLE)
    if(made)
        return()
    endif()
    set_property(TARGET ${target} PROPERTY KESTAL_RUNNABLE ON)
    list(GET CMAKE_CROSSCOMPILING_EMULATOR 0 emulator)
    list(SUBLIST CMAKE_CROSSCOMPILING_EMULATOR 1 -1 arguments)
    list(TRANSFORM arguments REPLACE "(.+)" "'\\1'")
    list(JOIN arguments " " arguments)
    file(MAKE_DIRECTORY ${folder}/emulator)
    file(CREATE_LINK ${emulator} ${folder}/emulator/${name} SYMBOLIC)
    file(GENERATE OUTPUT ${folder}/${name}
        CONTENT "#!/bin/sh\n[ \"\${1-}\" != '$<TARGET_FILE:${target}>' ] || shift\nexec '${folder}/emulator/${name}' ${arguments} -0 \"$0\" '$<TARGET_FILE:${target}>' \"$@\"\n"
        FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
endfunction()

# kestal_emulate(TARGET): in a cross build, CTest starts the test TARGET through its script. The test
# sees the script as its own name, so that it can start itself again.
function(kestal_emulate target)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        kestal_runnable(script ${target})
        set_target_properties(${target} PROPERTIES CROSSCOMPILING_EMULATOR ${script})
    endif()
endfunction()
