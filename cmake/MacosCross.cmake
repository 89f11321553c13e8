# The preset macos-cross: `Umbrant 2.plugin` and its archive, built on Linux. This build is the machine's own and makes
# the bundle's small files; each slice of the executable is a build of the same tree with the pinned cross compiler.

include(EffectName)
include(ExternalProject)
set(tools ${CMAKE_BINARY_DIR}/compiler)
execute_process(COMMAND ${CMAKE_SOURCE_DIR}/packaging/macos/fetch_compiler ${tools} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "The tools for the macOS bundle are not all there; the line above says what is missing.")
endif()
find_program(UMBRANT_LIPO llvm-lipo-14 REQUIRED)

# The addresses behind the panel's buttons are the slices' to know. Checked here too: the list would divide one with a
# semicolon.
include(CheckAddress)
set(passedOn "")
foreach(name UMBRANT_PRODUCT_URL UMBRANT_FREE_PLUGINS_URL UMBRANT_SUPPORT_URL)
    if(DEFINED ${name})
        umbrant_check_address(${name} MACOS)
        list(APPEND passedOn -D${name}=${${name}})
    endif()
endforeach()

set(slices "")
foreach(arch x86_64 arm64)
    set(slice "${CMAKE_BINARY_DIR}/${arch}/${UMBRANT_EFFECT_NAME}")
    ExternalProject_Add(
        slice_${arch}
        PREFIX ${CMAKE_BINARY_DIR}/steps/${arch}
        SOURCE_DIR ${CMAKE_SOURCE_DIR}
        BINARY_DIR ${CMAKE_BINARY_DIR}/${arch}
        CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${CMAKE_SOURCE_DIR}/cmake/toolchains/macos-cross.cmake
                   -DUMBRANT_MACOS_ARCH=${arch} -DUMBRANT_MACOS_TOOLS=${tools} -DCMAKE_BUILD_TYPE=Release
                   -DUMBRANT_HOST=OFF -DUMBRANT_TESTS=OFF -DUMBRANT_BENCH=OFF ${passedOn}
        BUILD_BYPRODUCTS ${slice}
        BUILD_ALWAYS ON
        USES_TERMINAL_BUILD ON
        INSTALL_COMMAND "")
    list(APPEND slices ${slice})
endforeach()

set(universal "${CMAKE_BINARY_DIR}/universal/${UMBRANT_EFFECT_NAME}")
add_custom_command(
    OUTPUT ${universal}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/universal
    COMMAND ${UMBRANT_LIPO} -create ${slices} -output ${universal}
    DEPENDS ${slices} slice_x86_64 slice_arm64
    COMMENT "Merging the slices"
    VERBATIM)

add_subdirectory(hostapi)
add_subdirectory(packaging)
umbrant_bundle(macos_bundle ${universal} ${universal})
