# Configures the project at SOURCE in FOLDER, once as it is and once per address variable with one that is no address.
# The first must succeed, the others must end with the sentence that names the variable.
file(REMOVE_RECURSE ${FOLDER})
set(configure ${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER} -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
              -DUMBRANT_HOST=OFF -DUMBRANT_TESTS=OFF -DUMBRANT_BENCH=OFF)
execute_process(COMMAND ${configure} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "the build refuses its own addresses: ${output}")
endif()
foreach(variable UMBRANT_PRODUCT_URL UMBRANT_FREE_PLUGINS_URL UMBRANT_SUPPORT_URL)
    execute_process(COMMAND ${configure} "-D${variable}=https://example.com/|id" RESULT_VARIABLE result
                    OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(result EQUAL 0)
        message(FATAL_ERROR "${variable} was taken")
    endif()
    string(FIND "${output}" "${variable} is 'https://example.com/|id', which" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "${variable} was refused without its sentence: ${output}")
    endif()
    execute_process(COMMAND ${CMAKE_COMMAND} -U${variable} ${FOLDER} RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
endforeach()
file(REMOVE_RECURSE ${FOLDER})
