# Builds the man page PAGE from SOURCE by SCDOC. TEMPORARY becomes the source with the version that
# VERSION_FILE holds.
cmake_minimum_required(VERSION 3.25)
file(READ ${version_file} KESTAL_VERSION)
configure_file(${source} ${temporary} @ONLY)
execute_process(COMMAND ${scdoc}
    INPUT_FILE ${temporary} OUTPUT_FILE ${page}
    COMMAND_ERROR_IS_FATAL ANY)
