# umbrant_embed_text(outVar name files...)
# Writes <name>.cpp, which holds each file byte for byte as `extern const char k<FileName>[]` of namespace
# umbrant::effect, NUL-terminated, and lists it in outVar. The names: blur_w.frag becomes kBlurWFrag. A header that
# declares them is the caller's to write.
function(umbrant_embed_text outVar name)
    set(output ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} "-DFILES=${ARGN}" -P ${CMAKE_SOURCE_DIR}/cmake/EmbedTextScript.cmake
        DEPENDS ${ARGN} ${CMAKE_SOURCE_DIR}/cmake/EmbedTextScript.cmake
        COMMENT "Embedding ${name}"
        VERBATIM)
    set(${outVar} ${output} PARENT_SCOPE)
endfunction()
