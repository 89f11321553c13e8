# Run by CPack in its copy of the installed files, to bring them into the form that Debian asks for.

# Manual pages and changelogs are compressed, without names and times in them: the same files give the same package.

file(GLOB_RECURSE documents ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.1
     ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog.Debian)
foreach(document IN LISTS documents)
    execute_process(COMMAND gzip -9 --no-name ${document} COMMAND_ERROR_IS_FATAL ANY)
endforeach()

# What a compiler leaves behind about itself says nothing to a user.
find_program(OBJCOPY objcopy REQUIRED)
file(GLOB_RECURSE binaries ${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/umbrant ${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/*.so
     ${CPACK_TEMPORARY_DIRECTORY}/*/usr/lib/*.a)
foreach(binary IN LISTS binaries)
    # A link to a file of another package.
    if(IS_SYMLINK ${binary})
        continue()
    endif()
    execute_process(COMMAND ${OBJCOPY} --remove-section=.comment ${binary} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
# A bundle is installed as a folder, in which CPack strips nothing.
file(GLOB_RECURSE bundled ${CPACK_TEMPORARY_DIRECTORY}/*/usr/OFX/*.ofx ${CPACK_TEMPORARY_DIRECTORY}/*/usr/OFX/*.so)
foreach(binary IN LISTS bundled)
    execute_process(COMMAND ${OBJCOPY} --strip-unneeded --remove-section=.comment ${binary} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
