# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors

# What the module exports and what it needs from others.
#
#   cmake -DMODULE=umbrant2.so -DNM=nm -DREADELF=readelf -P check_symbols.cmake

cmake_minimum_required(VERSION 3.25)

set(allowedLibraries libc.so.6 libm.so.6 libstdc++.so.6 libgcc_s.so.1 libOpenGL.so.0 libEGL.so.1
                     # the dynamic linker's own part of the C library
                     ld-linux-x86-64.so.2 ld-linux-aarch64.so.1)

function(run output)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE text RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}: ${result}")
    endif()
    string(REPLACE "\n" ";" lines "${text}")
    set(${output} "${lines}" PARENT_SCOPE)
endfunction()

run(dynamic ${READELF} -W -d ${MODULE})
set(needed "")
foreach(line IN LISTS dynamic)
    if(line MATCHES "\\(NEEDED\\).*\\[(.*)\\]")
        list(APPEND needed ${CMAKE_MATCH_1})
    endif()
endforeach()
if(needed MATCHES "lib(a|t|ub|l)san")
    set(isSanitized TRUE)
endif()
# clang's sanitizers have no library: their symbols are in the program that loads the module.
run(imported ${NM} -D --undefined-only --format=posix ${MODULE})
if(isSanitized OR imported MATCHES "__(a|t|ub|l)san_")
    message("skipped: the module is built with a sanitizer, which brings symbols of its own")
    return()
endif()

set(errors "")
if(NOT needed)
    string(APPEND errors "no needed library was found\n")
endif()
foreach(library IN LISTS needed)
    if(NOT library IN_LIST allowedLibraries)
        string(APPEND errors "needs ${library}\n")
    endif()
endforeach()

run(defined ${NM} -D --defined-only --format=posix ${MODULE})
set(exported "")
foreach(line IN LISTS defined)
    if(line MATCHES "^([^ ]+) ([^ ]) ")
        list(APPEND exported "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
    endif()
endforeach()
list(SORT exported)
if(NOT exported STREQUAL "EffectMain T;PluginDataEntryFunction T")
    string(APPEND errors "exports ${exported}\n")
endif()

# The C and C++ libraries version their symbols; OpenGL and EGL do not. The linker has checked that all resolve.
run(undefined ${NM} -D --undefined-only --format=posix ${MODULE})
set(count 0)
foreach(line IN LISTS undefined)
    if(NOT line MATCHES "^([^ ]+) ([Uwv])")
        continue()
    endif()
    math(EXPR count "${count} + 1")
    set(symbol ${CMAKE_MATCH_1})
    set(kind ${CMAKE_MATCH_2})
    if(NOT symbol MATCHES "@(GLIBC|GLIBCXX|CXXABI|GCC)_[0-9.]+$"
       AND NOT symbol MATCHES "^(gl|egl)[A-Z]"
       AND NOT (kind STREQUAL "w" AND symbol MATCHES "^(_ITM_.*|__gmon_start__)$"))
        string(APPEND errors "undefined ${symbol}\n")
    endif()
endforeach()
if(count EQUAL 0)
    string(APPEND errors "no undefined symbol was found: is the check reading the module?\n")
endif()

if(errors)
    message(FATAL_ERROR "${errors}")
endif()
message("two exports, ${count} imports, needs ${needed}")
