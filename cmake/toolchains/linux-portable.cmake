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

# Linked by this system's linker, with the archives and stubs in the folder and nothing of this system's C library.
set(runtime ${UMBRANT_PORTABLE_TOOLS}/runtime)
string(JOIN " " createShared
       "g++ -shared -nostdlib -s -Wl,--fatal-warnings -Wl,--gc-sections <LINK_FLAGS> -o <TARGET>"
       "${runtime}/crti.o ${runtime}/crtbeginS.o <OBJECTS> <LINK_LIBRARIES>"
       "-Wl,--as-needed ${runtime}/libstdc++.a ${runtime}/libunwind.a ${runtime}/libm.so.6 ${runtime}/libpthread.so.0"
       "${runtime}/libdl.so.2 ${runtime}/libc.so.6 ${runtime}/libld.so.2 ${runtime}/libc_nonshared.a ${runtime}/libgcc.a"
       "${runtime}/crtendS.o ${runtime}/crtn.o")
set(UMBRANT_CREATE_PORTABLE_MODULE "${createShared}")
