# Man pages and shell completions of commands.

find_program(KESTAL_SCDOC scdoc REQUIRED)
add_custom_target(kestal_man_pages ALL)
# The date in the man pages, in seconds since the epoch. It is fixed, so that the pages do not depend on
# the day of the build.
set(KESTAL_MAN_DATE 1767225600)
# The build writes the version and commit into this file.
set(KESTAL_VERSION_FILE ${PROJECT_BINARY_DIR}/version/version.txt)

# kestal_add_man_page(NAME [SECTION number] [NOT_INSTALLED]): builds docs/man/NAME.SECTION.scd, which tells the
# version, and installs it. SECTION is 1 unless given.
function(kestal_add_man_page name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NOT_INSTALLED" "SECTION" "")
    if(NOT arg_SECTION)
        set(arg_SECTION 1)
    endif()
    set(section man${arg_SECTION})
    set(page ${name}.${arg_SECTION})
    set(folder ${PROJECT_BINARY_DIR}/man/${section})
    file(MAKE_DIRECTORY ${folder})
    set(source ${PROJECT_SOURCE_DIR}/docs/man/${page}.scd)
    set(script ${PROJECT_SOURCE_DIR}/cmake/write_man_page.cmake)
    add_custom_command(OUTPUT ${folder}/${page}
        COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=${KESTAL_MAN_DATE}
            ${CMAKE_COMMAND} -D source=${source} -D temporary=${PROJECT_BINARY_DIR}/man/${page}.scd
                -D page=${folder}/${page} -D version_file=${KESTAL_VERSION_FILE}
                -D scdoc=${KESTAL_SCDOC} -P ${script}
        DEPENDS ${source} ${script} ${KESTAL_VERSION_FILE}
        COMMENT "Building the man page ${name}(${arg_SECTION})"
        VERBATIM)
    add_custom_target(${name}_man_page DEPENDS ${folder}/${page})
    add_dependencies(${name}_man_page kestal_version_source)
    add_dependencies(kestal_man_pages ${name}_man_page)
    if(arg_NOT_INSTALLED)
        return()
    endif()
    install(FILES ${folder}/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/${section})
endfunction()

# kestal_add_completion(NAME): installs tools/completion/NAME.bash, which completes NAME in bash.
function(kestal_add_completion name)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/completion/${name}.bash
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        RENAME ${name})
endfunction()
