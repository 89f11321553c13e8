# The module as macOS loads it: one Mach-O bundle with the two exports of entry/exports.map.

include(EffectName)

# CMake's own rule for Macs, set after the toolchain file was read, would link with the compiler.
if(UMBRANT_MACOS_CROSS_SLICE)
    set(CMAKE_CXX_CREATE_SHARED_MODULE ${UMBRANT_CREATE_MACOS_MODULE})
endif()

# Writes the linker's list of exported symbols from the version script that the Linux module links with.
function(umbrant_exported_symbols output map)
    file(STRINGS ${map} lines REGEX "^ +[A-Za-z_][A-Za-z_0-9]*;")
    set(text "")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "[A-Za-z_][A-Za-z_0-9]*" name "${line}")
        string(APPEND text "_${name}\n")
    endforeach()
    file(CONFIGURE OUTPUT ${output} CONTENT "${text}" @ONLY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${map})
endfunction()

# Gives the target a text stub of OpenGL.framework to link with, made from what the libraries leave undefined.
function(umbrant_opengl_stub target)
    set(stub ${CMAKE_CURRENT_BINARY_DIR}/OpenGL.framework/OpenGL.tbd)
    list(TRANSFORM ARGN REPLACE "(.+)" "$<TARGET_FILE:\\1>" OUTPUT_VARIABLE archives)
    add_custom_command(
        OUTPUT ${stub}
        COMMAND ${CMAKE_SOURCE_DIR}/packaging/macos/make_opengl_stub --nm ${UMBRANT_NM} --output ${stub} ${archives}
        DEPENDS ${CMAKE_SOURCE_DIR}/packaging/macos/make_opengl_stub ${ARGN}
        COMMENT "Listing the OpenGL that the module calls"
        VERBATIM)
    add_custom_target(${target}_opengl_stub DEPENDS ${stub})
    add_dependencies(${target} ${target}_opengl_stub)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${stub})
    target_link_options(${target} PRIVATE -F${CMAKE_CURRENT_BINARY_DIR})
endfunction()

# umbrant_macos_module(target OBJECTS library LINK libraries...)
# Makes the MODULE target the bundle's executable, in the build folder: in each of CMAKE_OSX_ARCHITECTURES on a Mac, or
# as the one slice that a cross build is for. OBJECTS names the static library of the target's own objects.
function(umbrant_macos_module target)
    cmake_parse_arguments(arg "" "OBJECTS" "LINK" ${ARGN})
    set(exported ${CMAKE_CURRENT_BINARY_DIR}/exported_symbols.txt)
    umbrant_exported_symbols(${exported} ${CMAKE_CURRENT_SOURCE_DIR}/exports.map)
    # The signature's identifier is the file's name, so it is linked under its final one.
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX "" OUTPUT_NAME "${UMBRANT_EFFECT_NAME}"
                                               LINK_DEPENDS ${exported} LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
    target_link_libraries(${target} PRIVATE ${arg_LINK} platform_macos)
    if(UMBRANT_MACOS_CROSS_SLICE)
        target_link_options(${target} PRIVATE -dead_strip -exported_symbols_list ${exported})
        umbrant_opengl_stub(${target} ${arg_OBJECTS} ${arg_LINK} platform_macos)
    else()
        target_link_options(${target} PRIVATE LINKER:-dead_strip LINKER:-exported_symbols_list,${exported})
    endif()
endfunction()
