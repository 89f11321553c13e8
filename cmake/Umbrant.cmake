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

# CMake's own rules, set after the toolchain file was read, would link with the compiler.
if(UMBRANT_PORTABLE)
    set(CMAKE_CXX_CREATE_SHARED_MODULE ${UMBRANT_CREATE_PORTABLE_MODULE})
    set(CMAKE_CXX_CREATE_SHARED_LIBRARY "g++ -shared -nostdlib <LINK_FLAGS> -o <TARGET> <OBJECTS>")
endif()

# What every target of the project compiles with.
add_library(umbrant_flags INTERFACE)
target_include_directories(umbrant_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(umbrant_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wcast-align)
target_link_libraries(umbrant_flags INTERFACE Threads::Threads)
# Unused functions are removed one by one when linking. The linker takes whole object files from a library, and an object
# file may be compiled from several sources (umbrant_join_sources).
if(NOT APPLE AND NOT UMBRANT_MACOS_CROSS)
    target_compile_options(umbrant_flags INTERFACE -ffunction-sections -fdata-sections)
    target_link_options(umbrant_flags INTERFACE -Wl,--gc-sections)
endif()

# Results are fixed to the last rounding step, so no multiply-add may be fused behind the formulas' back.
add_library(umbrant_module_flags INTERFACE)
target_compile_options(umbrant_module_flags INTERFACE -ffp-contract=off)
# GCC 12 loses a rounding to single precision where it makes one vector of two neighbouring double numbers of which one
# or both have passed through a float. Loops are still made vectors of.
target_compile_options(umbrant_module_flags INTERFACE -fno-tree-slp-vectorize)
target_link_libraries(umbrant_module_flags INTERFACE umbrant_flags)

# How a module is linked. Under a sanitizer it stays mapped to the end, so that reports can name its functions, and its
# calls into the sanitizer's library are met by the program.
set(umbrant_module_link_options -Wl,--no-undefined)
set(umbrant_sanitized FALSE)
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize=")
    set(umbrant_sanitized TRUE)
    set(umbrant_module_link_options -Wl,-z,nodelete)
endif()

# umbrant_link_quickly(): links the targets of the current folder and below with LLVM's linker if it is installed, in a fifth
# of the time of the default linker. For targets that are not shipped.
find_program(UMBRANT_QUICK_LINKER ld.lld)
mark_as_advanced(UMBRANT_QUICK_LINKER)
macro(umbrant_link_quickly)
    if(UMBRANT_QUICK_LINKER AND NOT CMAKE_CROSSCOMPILING)
        add_link_options(-fuse-ld=lld)
    endif()
endmacro()
if(umbrant_sanitized)
    umbrant_link_quickly()
endif()

# umbrant_harden(target): what keeps a mistake with foreign bytes from becoming more than a crash, for everything that
# ships: guarded stacks, checked library calls, checked format strings, indirect jumps only to where functions begin, and
# tables that cannot be changed after the start. tests/packaging/hardening_test.py reads it from the built files.
# Sanitizers bring checks of their own, and Apple's compiler has its own defaults. docs/performance.md has the cost.
function(umbrant_harden target)
    if(APPLE OR UMBRANT_MACOS_CROSS OR umbrant_sanitized)
        return()
    endif()
    target_compile_options(${target} PRIVATE -fstack-protector-strong -fstack-clash-protection -Wformat
                                             -Werror=format-security)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|amd64|AMD64")
        target_compile_options(${target} PRIVATE -fcf-protection=full)
    endif()
    # It works on optimised code alone.
    if(NOT CMAKE_BUILD_TYPE STREQUAL Debug)
        target_compile_options(${target} PRIVATE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    endif()
    target_link_options(${target} PRIVATE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endfunction()

# umbrant_join_sources(target): compiles its files eight at a time, so that shared headers are read, and what is used of them
# is emitted, once for eight files: half of the time. Therefore the names in the anonymous namespaces of one target must
# differ. The files of the macOS bundle are compiled one by one: its tests compile single files again in another folder, and
# identify static initialisers by the names of files.
function(umbrant_join_sources target)
    if(APPLE)
        return()
    endif()
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${UMBRANT_UNITY} UNITY_BUILD_BATCH_SIZE 8)
endfunction()

# umbrant_library(target FLAGS flags [LINK libraries...] [FOLDERS folders...] [APART])
# A static library of every .cpp in the current folder and in these folders of it; without one it is an interface library.
# Its files are joined (umbrant_join_sources) unless APART is given: for libraries that repeat names in anonymous namespaces
# by intention, whose loops are measured file by file, or of which the installed library uses only some files.
function(umbrant_library target)
    cmake_parse_arguments(arg "APART" "FLAGS" "LINK;SOURCES;FOLDERS" ${ARGN})
    set(patterns *.cpp)
    foreach(folder IN LISTS arg_FOLDERS)
        list(APPEND patterns ${folder}/*.cpp)
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    list(APPEND sources ${arg_SOURCES})
    if(sources)
        add_library(${target} STATIC ${sources})
        target_link_libraries(${target} PUBLIC ${arg_FLAGS} ${arg_LINK})
        umbrant_harden(${target})
        if(NOT arg_APART)
            umbrant_join_sources(${target})
        endif()
    else()
        add_library(${target} INTERFACE)
        target_link_libraries(${target} INTERFACE ${arg_FLAGS} ${arg_LINK})
    endif()
endfunction()

# umbrant_sanitize_quickly(targets...): for code without loops over pixels. Under a sanitizer, which multiplies what the
# optimiser has to read, it is not optimised.
function(umbrant_sanitize_quickly)
    if(umbrant_sanitized)
        foreach(target IN LISTS ARGN)
            target_compile_options(${target} PRIVATE -O0)
        endforeach()
    endif()
endfunction()

# umbrant_compile_quickly(target [OWN_HEADERS]): for code that waits for people and files more than it computes, and whose
# headers take the optimiser longer than all other code. Under a sanitizer it is not optimised at all.
function(umbrant_compile_quickly target)
    cmake_parse_arguments(arg "OWN_HEADERS" "" "" ${ARGN})
    umbrant_sanitize_quickly(${target})
    if(NOT umbrant_sanitized AND NOT CMAKE_BUILD_TYPE STREQUAL Debug)
        target_compile_options(${target} PRIVATE -O1)
    endif()
    if(TARGET umbrant_quick_headers AND NOT arg_OWN_HEADERS)
        target_precompile_headers(${target} REUSE_FROM umbrant_quick_headers)
    endif()
endfunction()

# umbrant_not_fuzzed(): for the current folder, which no fuzzer of tests/fuzz runs: its calls and comparisons are not
# reported to a fuzzer, which takes a seventh of the compiler's time for it. All other sanitizers stay. Precompiled headers
# are only for the same sanitizers, so the reports are left out and not the sanitizer that asks for them.
macro(umbrant_not_fuzzed)
    if(UMBRANT_FUZZ)
        add_compile_options(
            -fno-sanitize-coverage=inline-8bit-counters,pc-table,trace-cmp,indirect-calls,stack-depth)
    endif()
endmacro()

# umbrant_quick_headers(headers...): what most of that code includes, read once: a third of the time that such a file
# takes. They are compiled with the same options; a library with others says OWN_HEADERS.
function(umbrant_quick_headers)
    set(nothing ${CMAKE_CURRENT_BINARY_DIR}/umbrant_quick_headers.cpp)
    file(WRITE ${nothing} "")
    add_library(umbrant_quick_headers OBJECT EXCLUDE_FROM_ALL ${nothing})
    target_link_libraries(umbrant_quick_headers PRIVATE umbrant_flags fmt::fmt)
    umbrant_harden(umbrant_quick_headers)
    umbrant_compile_quickly(umbrant_quick_headers OWN_HEADERS)
    target_precompile_headers(umbrant_quick_headers PRIVATE ${ARGN})
endfunction()

# How long CTest waits for one entry before it takes it for hung, in seconds: far more than twenty times what the longest
# takes on two quiet cores, so that nothing depends on the speed of the machine.
set(umbrant_test_timeout 5400)
if(umbrant_sanitized)
    set(umbrant_test_timeout 14400)
endif()

# Where every entry leaves its JUnit report; tools/test_report reads them.
set(umbrant_test_reports ${CMAKE_BINARY_DIR}/reports)

# umbrant_test_entry(name program LABELS labels... [FILTER pattern] [COST seconds] [SLOW_UNWIND] [PROPERTIES ...])
# One CTest entry that runs the cases of a GoogleTest program, those of FILTER if it is given. Nothing is listed
# beforehand: listing starts every program, which a slow machine may not do in the time that CMake allows for it.
function(umbrant_test_entry name program)
    cmake_parse_arguments(arg "SLOW_UNWIND" "FILTER;COST" "LABELS;PROPERTIES" ${ARGN})
    string(REGEX REPLACE "[^A-Za-z0-9_.-]+" "_" report "${name}")
    set(command ${program} --gtest_output=xml:${umbrant_test_reports}/${report}.xml)
    if(arg_FILTER)
        list(APPEND command "--gtest_filter=${arg_FILTER}")
    endif()
    add_test(NAME "${name}" COMMAND ${command})
    # 77: every case was skipped.
    set_tests_properties("${name}" PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${umbrant_test_timeout} SKIP_RETURN_CODE 77
                                              ${arg_PROPERTIES})
    if(arg_COST)
        set_tests_properties("${name}" PROPERTIES COST ${arg_COST})
    endif()
    # The slow way up the stack tells whose a leak is also where libraries were built without frame pointers.
    if(arg_SLOW_UNWIND)
        set_tests_properties("${name}" PROPERTIES ENVIRONMENT_MODIFICATION
                                                  "ASAN_OPTIONS=string_append::fast_unwind_on_malloc=0")
    endif()
endfunction()

# umbrant_test_program(program NAME name [ALONE patterns...] ...): the entries of a GoogleTest program: one for all of
# its cases, and one for each pattern of ALONE, whose cases must not share a process with others because they change
# what a process has only one of (a limit, the pool, the choice of the renderer). The rest is umbrant_test_entry's.
function(umbrant_test_program program)
    cmake_parse_arguments(arg "SLOW_UNWIND" "NAME;COST" "ALONE;LABELS" ${ARGN})
    set(options LABELS ${arg_LABELS})
    if(arg_SLOW_UNWIND)
        list(APPEND options SLOW_UNWIND)
    endif()
    set(others)
    if(arg_ALONE)
        list(JOIN arg_ALONE ":" patterns)
        set(others FILTER "-${patterns}")
    endif()
    umbrant_test_entry("${arg_NAME}" ${program} ${options} ${others} COST ${arg_COST})
    foreach(pattern IN LISTS arg_ALONE)
        umbrant_test_entry("${arg_NAME}: ${pattern}" ${program} ${options} FILTER "${pattern}")
    endforeach()
endfunction()

# umbrant_unittest(name file LABELS labels... [ENVIRONMENT variables...] [PYTHON program]): one CTest entry that runs a file
# of Python's unittest cases. It counts as skipped when none could run. PYTHON is for cases that need a package of the
# system's, which another Python does not find.
function(umbrant_unittest name file)
    cmake_parse_arguments(arg "" "PYTHON" "LABELS;ENVIRONMENT;CONFIGURATIONS" ${ARGN})
    if(NOT arg_PYTHON)
        set(arg_PYTHON Python3::Interpreter)
    endif()
    # With a configuration it runs only when ctest is given that, by -C.
    if(arg_CONFIGURATIONS)
        list(PREPEND arg_CONFIGURATIONS CONFIGURATIONS)
    endif()
    string(REGEX REPLACE "[^A-Za-z0-9_.-]+" "_" report "${name}")
    add_test(NAME "${name}" COMMAND ${arg_PYTHON} -B ${CMAKE_SOURCE_DIR}/tests/support/run_unittest.py
                                    ${CMAKE_CURRENT_SOURCE_DIR}/${file} ${umbrant_test_reports}/${report}.xml
             ${arg_CONFIGURATIONS})
    set_tests_properties("${name}" PROPERTIES LABELS "${arg_LABELS}" TIMEOUT ${umbrant_test_timeout} SKIP_RETURN_CODE 77
                                              ENVIRONMENT "${arg_ENVIRONMENT}")
endfunction()

# umbrant_finds_own_objects(program): puts the program's shared objects beside a program of the current folder, where
# host/loading looks for them. Nothing in a build without the host.
function(umbrant_finds_own_objects program)
    foreach(object umbrant_color umbrant_drawing umbrant_http umbrant_images)
        if(NOT TARGET ${object})
            continue()
        endif()
        # Once a folder: programs that are linked at the same time must not make the same link.
        string(MAKE_C_IDENTIFIER "${object}_${CMAKE_CURRENT_BINARY_DIR}" beside)
        if(NOT TARGET ${beside})
            set(link ${CMAKE_CURRENT_BINARY_DIR}/${object}.so)
            add_custom_command(OUTPUT ${link} COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:${object}> ${link}
                               VERBATIM)
            add_custom_target(${beside} DEPENDS ${link})
            add_dependencies(${beside} ${object})
        endif()
        add_dependencies(${program} ${beside})
    endforeach()
endfunction()

# umbrant_note_program(program labels...): what the presets of the sanitizers build, the race checker's only where the
# label threads stands.
function(umbrant_note_program program)
    set_property(GLOBAL APPEND PROPERTY UMBRANT_TEST_PROGRAMS ${program})
    if(threads IN_LIST ARGN)
        set_property(GLOBAL APPEND PROPERTY UMBRANT_THREADED_PROGRAMS ${program})
    endif()
endfunction()

# umbrant_tests(name LINK libraries... [GL_LINK libraries...] [FOLDERS folders...] [LABELS labels...] [ALONE patterns...]
#               [GL_ALONE patterns...] [COST seconds] [GL_COST seconds] [SLOW_UNWIND])
# Two programs from the current folder and FOLDERS: <name>_test of every *_test.cpp that needs nothing (label unit) and
# <name>_gl_test of every *_gl_test.cpp (label gl). A file's suffix is a promise about what it needs.
function(umbrant_tests name)
    cmake_parse_arguments(arg "SLOW_UNWIND" "COST;GL_COST" "LINK;GL_LINK;FOLDERS;LABELS;ALONE;GL_ALONE" ${ARGN})
    set(unwind)
    if(arg_SLOW_UNWIND)
        set(unwind SLOW_UNWIND)
    endif()
    set(patterns *_test.cpp)
    foreach(folder IN LISTS arg_FOLDERS)
        list(APPEND patterns ${folder}/*_test.cpp)
    endforeach()
    file(GLOB all CONFIGURE_DEPENDS ${patterns})
    set(gl ${all})
    list(FILTER gl INCLUDE REGEX "_gl_test\\.cpp$")
    set(unit ${all})
    list(FILTER unit EXCLUDE REGEX "_gl_test\\.cpp$")
    if(unit)
        add_executable(${name}_test ${unit})
        target_link_libraries(${name}_test PRIVATE ${arg_LINK} umbrant_test_main)
        target_precompile_headers(${name}_test REUSE_FROM umbrant_test_headers)
        umbrant_join_sources(${name}_test)
        umbrant_finds_own_objects(${name}_test)
        umbrant_test_program(${name}_test NAME "${name}" LABELS unit ${arg_LABELS} ALONE ${arg_ALONE}
                             COST ${arg_COST} ${unwind})
        umbrant_note_program(${name}_test ${arg_LABELS})
    endif()
    if(gl)
        add_executable(${name}_gl_test ${gl})
        target_link_libraries(${name}_gl_test PRIVATE ${arg_GL_LINK} umbrant_test_main)
        target_precompile_headers(${name}_gl_test REUSE_FROM umbrant_test_headers)
        umbrant_join_sources(${name}_gl_test)
        umbrant_finds_own_objects(${name}_gl_test)
        umbrant_test_program(${name}_gl_test NAME "${name} gl" LABELS gl ${arg_LABELS} ALONE ${arg_GL_ALONE}
                             COST ${arg_GL_COST})
        umbrant_note_program(${name}_gl_test ${arg_LABELS})
    endif()
endfunction()
