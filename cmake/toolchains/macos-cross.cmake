# One slice of the macOS bundle, built on Linux. The folder UMBRANT_MACOS_TOOLS was made by
# packaging/macos/fetch_compiler; UMBRANT_MACOS_ARCH is x86_64 or arm64.
#
# The compiler only compiles: its own linker exports its whole C++ library and makes no bundles. LLD 16 links; LLD 14
# writes unwind tables that cannot be read.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)
set(CMAKE_SYSTEM_PROCESSOR ${UMBRANT_MACOS_ARCH})
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES UMBRANT_MACOS_ARCH UMBRANT_MACOS_TOOLS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_OSX_SYSROOT "")
set(UMBRANT_MACOS_CROSS_SLICE ON)

set(CMAKE_CXX_COMPILER ${UMBRANT_MACOS_TOOLS}/c++-${UMBRANT_MACOS_ARCH})
set(CMAKE_CXX_COMPILER_LAUNCHER "")
# What CMake would find out by linking with the compiler.
set(CMAKE_CXX_COMPILER_WORKS ON)
set(CMAKE_CXX_ABI_COMPILED ON)
set(CMAKE_SIZEOF_VOID_P 8)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES ${UMBRANT_MACOS_TOOLS}/include)
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../.. ABSOLUTE)
# No name of a folder of this machine may reach the object code, and no warning is let pass.
set(CMAKE_CXX_FLAGS_INIT "-g0 -fno-sanitize=undefined -ffile-prefix-map=${root}=. -Werror")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG" CACHE STRING "")

find_program(UMBRANT_LD64 ld64.lld-16 REQUIRED)
find_program(UMBRANT_NM llvm-nm-14 REQUIRED)
find_program(CMAKE_AR llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-14 REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-14 REQUIRED)
set(CMAKE_CXX_ARCHIVE_CREATE "<CMAKE_AR> qcsD <TARGET> <OBJECTS>")
set(CMAKE_CXX_ARCHIVE_APPEND "<CMAKE_AR> qsD <TARGET> <OBJECTS>")
set(CMAKE_CXX_ARCHIVE_FINISH "")

set(runtime ${UMBRANT_MACOS_TOOLS}/runtime/${UMBRANT_MACOS_ARCH})
string(JOIN " " UMBRANT_CREATE_MACOS_MODULE
       "${UMBRANT_LD64} -arch ${UMBRANT_MACOS_ARCH} -platform_version macos 11.0 11.0 -bundle -adhoc_codesign"
       "-S -fatal_warnings <LINK_FLAGS> -o <TARGET> <OBJECTS> <LINK_LIBRARIES>"
       "${runtime}/libc++.a ${runtime}/libc++abi.a"
       "${UMBRANT_MACOS_TOOLS}/zig-lib/libc/darwin/libSystem.11.tbd")
