# umbrant_link_stub(target soname): a shared library for the linker alone, with the name and the functions that this
# machine's own library has: to link for another processor, whose libraries are not here.
function(umbrant_link_stub target soname)
    find_file(native_${target} ${soname} PATHS /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu /usr/lib64 /usr/lib
              REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    execute_process(COMMAND nm --dynamic --defined-only --format=posix ${native_${target}} OUTPUT_VARIABLE symbols
                    COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]* T " functions "${symbols}")
    set(text "")
    foreach(function IN LISTS functions)
        string(REPLACE " T " "" name "${function}")
        string(APPEND text "extern \"C\" void ${name}() {}\n")
    endforeach()
    file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp CONTENT "${text}" @ONLY)
    add_library(${target} SHARED ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX "" OUTPUT_NAME ${soname} NO_SONAME ON
                                               CXX_VISIBILITY_PRESET default LIBRARY_OUTPUT_DIRECTORY
                                                                             ${CMAKE_BINARY_DIR}/stubs)
    target_link_options(${target} PRIVATE -Wl,-soname,${soname})
endfunction()
