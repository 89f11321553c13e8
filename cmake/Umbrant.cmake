# Targets of the house: one static library per folder, one test program per folder and kind.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The bundle lies where the host looks for it and knows no such folders.
if(NOT APPLE)
    # Debian keeps libraries in a folder for each architecture, wherever the prefix is; CMake would do so under /usr alone.
    if(NOT DEFINED CMAKE_INSTALL_LIBDIR AND CMAKE_LIBRARY_ARCHITECTURE AND EXISTS /etc/debian_version)
        set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Object code libraries")
    endif()
    include(GNUInstallDirs)
    # Where the module lies in an installation, from the prefix on: not among libraries that programs are linked with.
    set(UMBRANT_MODULE_DESTINATION ${CMAKE_INSTALL_LIBDIR}/umbrant)
endif()

find_package(Threads REQUIRED)

# What every target of the project compiles with.
add_library(umbrant_flags INTERFACE)
target_include_directories(umbrant_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(umbrant_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align)
target_link_libraries(umbrant_flags INTERFACE Threads::Threads)

# Results are fixed to the last rounding step, so no multiply-add may be fused behind the formulas' back.
add_library(umbrant_module_flags INTERFACE)
target_compile_options(umbrant_module_flags INTERFACE -ffp-contract=off)
target_link_libraries(umbrant_module_flags INTERFACE umbrant_flags)

# How a module is linked. Under a sanitizer it stays mapped to the end, so that reports can name its functions, and its
# calls into the sanitizer's library are met by the program.
set(umbrant_module_link_options -Wl,--no-undefined)
set(umbrant_sanitized FALSE)
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(umbrant_sanitized TRUE)
    set(umbrant_module_link_options -Wl,-z,nodelete)
endif()

# umbrant_library(target FLAGS flags [LINK libraries...])
# A static library of every .cpp in the current folder; a folder without one becomes an interface library.
function(umbrant_library target)
    cmake_parse_arguments(arg "" "FLAGS" "LINK;SOURCES" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    list(APPEND sources ${arg_SOURCES})
    if(sources)
        add_library(${target} STATIC ${sources})
        target_link_libraries(${target} PUBLIC ${arg_FLAGS} ${arg_LINK})
    else()
        add_library(${target} INTERFACE)
        target_link_libraries(${target} INTERFACE ${arg_FLAGS} ${arg_LINK})
    endif()
endfunction()

# umbrant_discover(program PREFIX text LABELS labels... TIMEOUT seconds [SLOW_UNWIND])
# One CTest test per GoogleTest case of a program. The labels are set by a script of their own, which CTest reads after
# the discovery: gtest_discover_tests itself takes lists among properties apart.
function(umbrant_discover program)
    cmake_parse_arguments(arg "SLOW_UNWIND" "PREFIX;TIMEOUT" "LABELS" ${ARGN})
    # The slow way up the stack tells whose a leak is also where libraries were built without frame pointers.
    set(more)
    if(arg_SLOW_UNWIND)
        set(more "ENVIRONMENT_MODIFICATION ASAN_OPTIONS=string_append::fast_unwind_on_malloc=0")
    endif()
    gtest_discover_tests(${program} TEST_PREFIX "${arg_PREFIX}: " DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${program}_properties.cmake)
    file(WRITE ${script} "foreach(test IN LISTS ${program}_TESTS)
    set_tests_properties(\"\${test}\" PROPERTIES LABELS \"${arg_LABELS}\" TIMEOUT ${arg_TIMEOUT} ${more})
endforeach()
")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script})
endfunction()

# umbrant_note_program(program labels...): what the presets of the sanitizers build, the race checker's only where the
# label threads stands.
function(umbrant_note_program program)
    set_property(GLOBAL APPEND PROPERTY UMBRANT_TEST_PROGRAMS ${program})
    if(threads IN_LIST ARGN)
        set_property(GLOBAL APPEND PROPERTY UMBRANT_THREADED_PROGRAMS ${program})
    endif()
endfunction()

# umbrant_tests(name LINK libraries... [GL_LINK libraries...])
# Two programs from the current folder: <name>_test of every *_test.cpp that needs nothing (label unit) and
# <name>_gl_test of every *_gl_test.cpp (label gl). A file's suffix is a promise about what it needs.
function(umbrant_tests name)
    cmake_parse_arguments(arg "SLOW_UNWIND" "" "LINK;GL_LINK;LABELS" ${ARGN})
    set(unwind)
    if(arg_SLOW_UNWIND)
        set(unwind SLOW_UNWIND)
    endif()
    file(GLOB all CONFIGURE_DEPENDS *_test.cpp)
    set(gl ${all})
    list(FILTER gl INCLUDE REGEX "_gl_test\\.cpp$")
    set(unit ${all})
    list(FILTER unit EXCLUDE REGEX "_gl_test\\.cpp$")
    if(unit)
        add_executable(${name}_test ${unit})
        target_link_libraries(${name}_test PRIVATE ${arg_LINK} GTest::gmock_main)
        umbrant_discover(${name}_test PREFIX "${name}" LABELS unit ${arg_LABELS} TIMEOUT 300 ${unwind})
        umbrant_note_program(${name}_test ${arg_LABELS})
    endif()
    if(gl)
        add_executable(${name}_gl_test ${gl})
        target_link_libraries(${name}_gl_test PRIVATE ${arg_GL_LINK} GTest::gmock_main)
        umbrant_discover(${name}_gl_test PREFIX "${name} gl" LABELS gl ${arg_LABELS} TIMEOUT 600)
        umbrant_note_program(${name}_gl_test ${arg_LABELS})
    endif()
endfunction()
