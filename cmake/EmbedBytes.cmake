# umbrant_embed_bytes(outVar symbol file)
# Writes <symbol>.cpp, which holds the file byte for byte as `extern const unsigned char <symbol>[<size>]`, and lists it
# in outVar. A header that declares it is the caller's to write.
function(umbrant_embed_bytes outVar symbol file)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DSYMBOL=${symbol} -DFILE=${file} -P
                ${CMAKE_SOURCE_DIR}/cmake/EmbedBytesScript.cmake
        DEPENDS ${file} ${CMAKE_SOURCE_DIR}/cmake/EmbedBytesScript.cmake
        COMMENT "Embedding ${symbol}"
        VERBATIM)
    set(${outVar} ${output} PARENT_SCOPE)
endfunction()
