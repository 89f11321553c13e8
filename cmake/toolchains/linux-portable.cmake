# x86-64 Linux with glibc 2.28 or newer and no C++ library of its own: the module and the OpenFX plug-in for hosts on older
# systems. The folder UMBRANT_PORTABLE_TOOLS was made by packaging/openfx/fetch_compiler.
#
# The pinned compiler brings the declarations and the link stubs of that glibc and the unwinder; the C++ library is an archive.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES UMBRANT_PORTABLE_TOOLS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(UMBRANT_PORTABLE ON)

set(CMAKE_CXX_COMPILER ${UMBRANT_PORTABLE_TOOLS}/c++)
# The compiler has a cache of its own.
set(CMAKE_CXX_COMPILER_LAUNCHER "")
# What CMake would find out by linking, which is slow the first time.
set(CMAKE_CXX_COMPILER_WORKS ON)
set(CMAKE_CXX_ABI_COMPILED ON)
set(CMAKE_SIZEOF_VOID_P 8)
set(CMAKE_HAVE_LIBC_PTHREAD ON)

set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${UMBRANT_PORTABLE_TOOLS}/include)
set(CMAKE_FIND_ROOT_PATH ${UMBRANT_PORTABLE_TOOLS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# What is shipped is not found by where it was linked.
set(CMAKE_SKIP_RPATH ON)

# No name of a folder of this machine may reach the object code, and no warning is let pass.
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
set(CMAKE_CXX_FLAGS_INIT "-g0 -fno-sanitize=undefined -ffile-prefix-map=${root}=. -Werror")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "")
foreach(kind SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-O2 -s -nostdlib++ -Wl,-z,defs")
endforeach()
set(CMAKE_CXX_STANDARD_LIBRARIES "${UMBRANT_PORTABLE_TOOLS}/libstdc++.a -lunwind -lpthread -ldl")
