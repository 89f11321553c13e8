include(EffectName)

set(UMBRANT_CODESIGN_IDENTITY "-" CACHE STRING "On a Mac: the certificate that signs the bundle; \"-\" signs ad hoc")

# umbrant_bundle(target executable dependency)
# Puts the bundle, `<effect name>.plugin`, together in the build folder, around the executable, and its archive beside it.
function(umbrant_bundle target executable dependency)
    set(bundle "${CMAKE_BINARY_DIR}/${UMBRANT_EFFECT_NAME}.plugin")
    string(REPLACE " " "-" slug "${UMBRANT_EFFECT_NAME}-${PROJECT_VERSION}-macOS")
    set(archive ${CMAKE_BINARY_DIR}/${slug}.zip)
    file(GLOB texts CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/packaging/macos/*.txt)
    # A cross build has no tool for the bundle's seal; its executable was signed ad hoc by the linker.
    set(sign "")
    if(APPLE)
        set(sign COMMAND codesign --force --sign ${UMBRANT_CODESIGN_IDENTITY})
        if(NOT UMBRANT_CODESIGN_IDENTITY STREQUAL "-")
            list(APPEND sign --options runtime --timestamp)
        endif()
        list(APPEND sign ${bundle})
    endif()
    add_custom_command(
        OUTPUT ${archive}
        BYPRODUCTS ${archive}.sha256
        COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle}
        COMMAND write_bundle_files ${bundle} ${UMBRANT_BUNDLE_ID}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle}/Contents/MacOS
        COMMAND ${CMAKE_COMMAND} -E copy ${executable} "${bundle}/Contents/MacOS/${UMBRANT_EFFECT_NAME}"
        ${sign}
        COMMAND ${CMAKE_SOURCE_DIR}/packaging/macos/make_archive ${bundle} ${archive}
        DEPENDS ${dependency} write_bundle_files ${texts} ${CMAKE_SOURCE_DIR}/LICENSE
                ${CMAKE_SOURCE_DIR}/packaging/macos/make_archive
        COMMENT "Putting ${UMBRANT_EFFECT_NAME}.plugin together"
        VERBATIM)
    add_custom_target(${target} ALL DEPENDS ${archive})
endfunction()
