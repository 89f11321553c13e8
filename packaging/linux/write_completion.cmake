# cmake -DPROGRAM=... -DSHELL=... -DFILE=... -P write_completion.cmake
# Has the built program write its completion for a shell into a file.
execute_process(COMMAND ${PROGRAM} completion ${SHELL} OUTPUT_FILE ${FILE}.new
                COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${FILE}.new ${FILE})
