// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the static C++ library calls and glibc 2.28 does not have, for shared objects that run on older systems. Before
// glibc 2.33 the functions of the stat family were part of each program and called functions with a version number; the
// pinned compiler's own copies of them leave errno as it was.

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

extern "C" {

int __xstat(int version, const char* path, struct stat* status);
int __lxstat(int version, const char* path, struct stat* status);
int __fxstat(int version, int descriptor, struct stat* status);
int __fxstatat(int version, int folder, const char* path, struct stat* status, int flags);

/// Whether the process has one thread. Zero is right for any number.
[[gnu::visibility("hidden")]] extern char __libc_single_threaded;
char __libc_single_threaded = 0;
}

namespace {

/// The layout of `struct stat` on x86-64.
constexpr int kStatVersion = 1;

}  // namespace

extern "C" {

// The system's header names their parameters in its own way.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)
[[gnu::visibility("hidden")]] int stat(const char* path, struct stat* status) noexcept {
    return __xstat(kStatVersion, path, status);
}
[[gnu::visibility("hidden")]] int lstat(const char* path, struct stat* status) noexcept {
    return __lxstat(kStatVersion, path, status);
}
[[gnu::visibility("hidden")]] int fstat(int descriptor, struct stat* status) noexcept {
    return __fxstat(kStatVersion, descriptor, status);
}
[[gnu::visibility("hidden")]] int fstatat(int folder, const char* path, struct stat* status, int flags) noexcept {
    return __fxstatat(kStatVersion, folder, path, status, flags);
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

/// What std::random_device reads, where it is used. It cannot report an error.
[[gnu::visibility("hidden")]] std::uint32_t arc4random() {
    std::uint32_t number = 0;
    if (getentropy(&number, sizeof(number)) != 0) std::abort();
    return number;
}
}
