# The Debian package python3-umbrant: the Python package, which draws with the module of the package umbrant.

list(APPEND CPACK_COMPONENTS_ALL python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-umbrant)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
# An extension module is for one minor version of Python.
get_target_property(suffix umbrant_python SUFFIX)
string(REGEX MATCH "cpython-([0-9])([0-9]+)" ignored "${suffix}")
math(EXPR nextMinor "${CMAKE_MATCH_2} + 1")
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "umbrant (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), python3 (>= ${CMAKE_MATCH_1}.${CMAKE_MATCH_2}~), \
python3 (<< ${CMAKE_MATCH_1}.${nextMinor}), python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-pil, python3-av")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
    "long, soft shadows from array to array - Python 3 package
Renders with the effect module of the package umbrant: a numpy array and named
parameters in, an array out, on any number of threads. 8 bits and 32-bit
float, any strides, textures, keyframes and presets.
.
The package contains the module umbrant, its type stubs and examples.")
# Python code is compiled when the package is installed, and what was compiled goes with it.
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_LIST_DIR}/python/postinst
                                              ${CMAKE_CURRENT_LIST_DIR}/python/prerm)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/examples/python/ COMPONENT python
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/python3-umbrant/examples FILES_MATCHING PATTERN *.py)
