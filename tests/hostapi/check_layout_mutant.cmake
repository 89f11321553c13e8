# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors

# Changes one declaration in a copy of hostapi/ and expects the layout proof to fail with `MESSAGE`; the unchanged copy
# must compile.
#
#   cmake -DCOMPILER=c++ -DSOURCE=... -DFOLDER=... -DHEADER=pixels.h -DFROM=... -DTO=... -DMESSAGE=...
#         -P check_layout_mutant.cmake

cmake_minimum_required(VERSION 3.25)

foreach(text FROM TO)
    string(REPLACE "SEMICOLON" ";" ${text} "${${text}}")
    string(REPLACE "NEWLINE" "\n    " ${text} "${${text}}")
endforeach()

file(REMOVE_RECURSE ${FOLDER})
file(COPY ${SOURCE}/hostapi DESTINATION ${FOLDER})
function(compile resultVariable outputVariable)
    execute_process(COMMAND ${COMPILER} -std=c++20 -fsyntax-only -I${FOLDER} ${FOLDER}/hostapi/abi_asserts.cpp
                    RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    set(${resultVariable} ${result} PARENT_SCOPE)
    set(${outputVariable} "${output}" PARENT_SCOPE)
endfunction()

compile(result output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the unchanged interface does not compile:\n${output}")
endif()

file(READ ${FOLDER}/hostapi/${HEADER} original)
string(REPLACE "${FROM}" "${TO}" changed "${original}")
if(changed STREQUAL original)
    message(FATAL_ERROR "${HEADER} does not contain: ${FROM}")
endif()
file(WRITE ${FOLDER}/hostapi/${HEADER} "${changed}")

compile(result output)
if(result EQUAL 0)
    message(FATAL_ERROR "compiles although ${HEADER} says: ${TO}")
endif()
string(FIND "${output}" "${MESSAGE}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "does not compile, but not for \"${MESSAGE}\":\n${output}")
endif()
file(REMOVE_RECURSE ${FOLDER})
