# Debian packages by CPack: `cpack -G DEB` in a build folder writes umbrant, the program with its module, and
# libumbrant-host-dev, the library for other programs, python3-umbrant, the Python package where it is built,
# umbrant-openfx, the plug-in, umbrant-effect-dev, the interface's headers, and umbrant-doc, the documents.
# packaging/debian/try installs and uses them in a fresh Debian.

set(CPACK_PACKAGE_NAME umbrant)
set(CPACK_PACKAGE_VENDOR "The Umbrant authors")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(UMBRANT_MAINTAINER "The Umbrant authors <umbrant@example.com>" CACHE STRING "Maintainer of the Debian packages")
set(CPACK_PACKAGE_CONTACT "${UMBRANT_MAINTAINER}")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL umbrant development openfx effect doc)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/finish_files.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 0upstream1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${UMBRANT_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE umbrant)

set(CPACK_DEBIAN_UMBRANT_PACKAGE_NAME umbrant)
set(CPACK_DEBIAN_UMBRANT_PACKAGE_SECTION graphics)
# What the program and the module are linked with is found by dpkg-shlibdeps.
set(CPACK_DEBIAN_UMBRANT_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_UMBRANT_PACKAGE_RECOMMENDS "ffmpeg, libgl1-mesa-dri")
set(CPACK_DEBIAN_UMBRANT_PACKAGE_SUGGESTS "umbrant-doc")
set(CPACK_DEBIAN_UMBRANT_DESCRIPTION
    "long, soft shadows for images with transparency
Renders normal, inner and radial shadows of images, sequences and clips with
an alpha channel, in 8 bits and 32-bit float: a stack of blurred copies along
a straight or eased curve, in one colour or with a texture.
.
The package contains the program umbrant and its effect module, which has a
GPU renderer (OpenGL) and a CPU renderer. Neither a GPU nor a screen is
needed.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libumbrant-host-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "umbrant (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libfmt-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "long, soft shadows from memory to memory - development files
A static library that renders with the effect module of the package umbrant:
an image and named parameters in, an image out, on any number of threads.
.
The package contains the library, its headers, a CMake package, a pkg-config
file and an example.")

# Hosts look in /usr/OFX/Plugins alone. The bundle is whole and needs no other package of the project.
set(CPACK_DEBIAN_OPENFX_PACKAGE_NAME umbrant-openfx)
set(CPACK_DEBIAN_OPENFX_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_OPENFX_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_OPENFX_PACKAGE_RECOMMENDS "libgl1-mesa-dri")
set(CPACK_DEBIAN_OPENFX_PACKAGE_SUGGESTS "umbrant")
set(CPACK_DEBIAN_OPENFX_DESCRIPTION
    "long, soft shadows for images with transparency - OpenFX plug-in
Renders normal, inner and radial shadows of an image's alpha channel, in 8
bits and 32-bit float, in every host of OpenFX plug-ins: a stack of blurred
copies along a straight or eased curve, in one colour or with a texture.
.
The package contains the plug-in in the folder that hosts look in. The program
of the package umbrant says why a host does not find it: umbrant doctor.")

set(CPACK_DEBIAN_EFFECT_PACKAGE_NAME umbrant-effect-dev)
set(CPACK_DEBIAN_EFFECT_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_EFFECT_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_EFFECT_DESCRIPTION
    "long, soft shadows for images with transparency - effect interface
Declares the interface through which the effect module of the package umbrant
and its host call each other: commands, parameters, images, suites.
.
The package contains C++ headers and a pkg-config file, for hosts that load
the module and for effects that the program umbrant checks and draws.")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME umbrant-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_DESCRIPTION
    "long, soft shadows for images with transparency - documentation
Describes the program, the library, the Python package and the plug-ins of
Umbrant: a tutorial, a gallery, every parameter with pictures, sequences,
clips and render farms.
.
The package contains the documents, the layers and presets that their
commands use, and the examples.")

set(packages umbrant libumbrant-host-dev umbrant-openfx umbrant-effect-dev umbrant-doc)
set(components umbrant development openfx effect doc)
if(TARGET umbrant_python)
    include(packaging/debian/python_package.cmake)
    list(APPEND packages python3-umbrant)
    list(APPEND components python)
endif()
foreach(package component IN ZIP_LISTS packages components)
    configure_file(packaging/debian/changelog.in packaging/debian/changelog.Debian @ONLY)
    install(FILES ${CMAKE_SOURCE_DIR}/packaging/debian/copyright ${CMAKE_BINARY_DIR}/packaging/debian/changelog.Debian
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endforeach()
# The one exception that lintian is asked for: the folder that the OpenFX standard names.
file(WRITE ${CMAKE_BINARY_DIR}/packaging/debian/umbrant-openfx
     "# Hosts of OpenFX plug-ins look in /usr/OFX/Plugins; the standard names this folder.
umbrant-openfx: non-standard-dir-in-usr [usr/OFX/]
umbrant-openfx: file-in-unusual-dir [usr/OFX/*]
")
install(FILES ${CMAKE_BINARY_DIR}/packaging/debian/umbrant-openfx DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        COMPONENT openfx)
install(FILES ${CMAKE_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/umbrant RENAME changelog
        COMPONENT umbrant)

include(CPack)
