# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors

# Which objects of a module or a library are created by a function at its first use. A child of fork() waits forever for one
# that another thread of its parent was creating, so each of them is used while the module or the program is loaded, or
# never in a child; EXPECTED lists them, demangled, without anonymous namespaces.
#
#   cmake -DFILE=umbrant2.so -DNM=nm "-DEXPECTED=BestKernels()::best;..." -P check_first_uses.cmake

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} -C --defined-only ${FILE} OUTPUT_VARIABLE text RESULT_VARIABLE result ERROR_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${NM} cannot read ${FILE}: ${result}")
endif()
string(REPLACE "\n" ";" lines "${text}")
set(found "")
foreach(line IN LISTS lines)
    # Objects of namespaces have guards, too, where they are inline or of one thread; they are created without a function.
    if(line MATCHES "guard variable for (umbrant::.*\\)::[A-Za-z_]+)$")
        string(REGEX REPLACE "umbrant::(effect|host)::|\\(anonymous namespace\\)::" "" object "${CMAKE_MATCH_1}")
        list(APPEND found "${object}")
    endif()
endforeach()
list(REMOVE_DUPLICATES found)
if(NOT found)
    message(FATAL_ERROR "no object was found in ${FILE}: has it been stripped?")
endif()
set(errors "")
foreach(object IN LISTS found)
    if(NOT object IN_LIST EXPECTED)
        string(APPEND errors "'${object}' is created at its first use: a child of fork() would wait forever for a thread "
                             "that was creating it. Create it while the module or the program is loaded, and list it.\n")
    endif()
endforeach()
if(errors)
    message(FATAL_ERROR "${errors}")
endif()
message("created at their first use, before there are threads: ${found}")
