// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/packaging/mapped/mac_system.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "tests/packaging/mapped/macho_image.h"

extern "C" {
extern void* __dso_handle;
int __cxa_atexit(void (*function)(void*), void* argument, void* library);
int __cxa_thread_atexit_impl(void (*function)(void*), void* argument, void* library);
int* __errno_location();
int __xpg_strerror_r(int, char*, std::size_t);
}

namespace {

/// Names that mean the same in both C libraries, down to the layout of what they are given.
bool IsSame(const std::string& name) {
    static const std::set<std::string> names = {
        "abort",   "aligned_alloc", "calloc", "cos",      "exp2",      "fmod",   "ceil",   "floor",
        "round",   "trunc",         "pow",    "sqrt",     "ceilf",     "floorf", "roundf", "fmodf",
        "sinf",    "cosf",          "fflush", "fprintf",  "fputc",     "free",   "fwrite", "getc",
        "malloc",  "memchr",        "memcmp", "memcpy",   "memmove",   "memset", "printf", "putchar",
        "puts",    "realloc",       "sin",    "snprintf", "sscanf",    "strcmp", "strlen", "strncmp",
        "strncpy", "strnlen",       "ungetc", "vfprintf", "vsnprintf", "wcslen"};
    return names.contains(name);
}

/// Names that the C++ library and the unwinder refer to, for locales, wide characters, files and diagnostics, and that
/// the effect never reaches.
bool IsNeverCalled(const std::string& name) {
    static const std::set<std::string> names = {
        "__maskrune_l", "__tolower",   "__toupper",  "asprintf_l",   "catclose",        "catgets",
        "catopen",      "dladdr",      "dlsym",      "freelocale",   "mbrlen_l",        "mbrtowc_l",
        "mbsnrtowcs_l", "mbsrtowcs_l", "sscanf_l",   "strftime_l",   "strtod_l",        "strtof_l",
        "strtold_l",    "strtoll_l",   "strtoull_l", "wcsnrtombs_l", "dyld_stub_binder"};
    return names.contains(name);
}

/// The C locale's character table begins with an identifier and a name; its classes are never asked for here.
std::array<std::byte, 4096> defaultRuneLocale{};

std::mutex commandMutex;
char lastCommand[1024] = "";

int System(const char* command) {
    const std::lock_guard lock(commandMutex);
    std::snprintf(lastCommand, sizeof(lastCommand), "%s", command ? command : "");
    return 0;
}

void Bzero(void* memory, std::size_t size) {
    std::memset(memory, 0, size);
}

struct SinCos {
    double sine, cosine;
};

/// Both at once, returned in two registers.
SinCos SinCosTogether(double angle) {
    return {std::sin(angle), std::cos(angle)};
}

/// The locale is always the C locale, in which the process of a test runs.
int PrintIntoInLocale(char* text, std::size_t size, void*, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, size, format, arguments);
    va_end(arguments);
    return length;
}

int MultibyteToWide(wchar_t* wide, const char* text, std::size_t size, void*) {
    return std::mbtowc(wide, text, size);
}

/// The state's record is larger there, and all zeros at the start in both.
std::size_t WideToMultibyte(char* text, wchar_t wide, std::mbstate_t* state, void*) {
    return std::wcrtomb(text, wide, state);
}

int LongestMultibyte(void*) {
    return 1;
}

/// The only library ever asked for is one that no process of a test has loaded.
void* NoLibrary(const char*, int) {
    return nullptr;
}

/// Tied to this library, so that it stays loaded until the destructors have run.
void AtThreadExit(void (*function)(void*), void* argument) {
    __cxa_thread_atexit_impl(function, argument, &__dso_handle);
}

int AtExit(void (*function)(void*), void* argument, void*) {
    return __cxa_atexit(function, argument, &__dso_handle);
}

struct UnwindSections {
    const void* start;
    const void* dwarf;
    std::uintptr_t dwarfSize;
    const void* compact;
    std::uintptr_t compactSize;
};

std::vector<const MachoImage*>& UnwindImages() {
    static std::vector<const MachoImage*> images;
    return images;
}

bool FindUnwindSections(const void* address, UnwindSections* found) {
    for (const MachoImage* image : UnwindImages()) {
        if (!image->Contains(address)) continue;
        const auto dwarf = image->SectionBytes("__TEXT", "__eh_frame");
        const auto compact = image->SectionBytes("__TEXT", "__unwind_info");
        *found = {image->Start(), dwarf.data(), dwarf.size(), compact.data(), compact.size()};
        return true;
    }
    return false;
}

/// Images are announced by hand, and never taken away while code of theirs can run.
void IgnoreRemovedImages(void (*)(const void*, std::intptr_t)) {}

template <typename Function>
void* Address(Function* function) {
    return std::bit_cast<void*>(function);
}

const std::map<std::string, void*>& Own() {
    static const std::map<std::string, void*> own = {
        {"__DefaultRuneLocale", defaultRuneLocale.data()},
        {"___bzero", Address(&Bzero)},
        {"___cxa_atexit", Address(&AtExit)},
        {"___error", Address(&__errno_location)},
        {"___sincos_stret", Address(&SinCosTogether)},
        {"___stderrp", &stderr},
        {"___stdinp", &stdin},
        {"___stdoutp", &stdout},
        {"__dyld_find_unwind_sections", Address(&FindUnwindSections)},
        {"__dyld_register_func_for_remove_image", Address(&IgnoreRemovedImages)},
        {"__tlv_atexit", Address(&AtThreadExit)},
        // Never called: the image's descriptors get the thunk itself.
        {"__tlv_bootstrap", Address(&std::abort)},
        {"____mb_cur_max_l", Address(&LongestMultibyte)},
        {"_dlopen", Address(&NoLibrary)},
        {"_mbtowc_l", Address(&MultibyteToWide)},
        {"_snprintf_l", Address(&PrintIntoInLocale)},
        {"_strerror_r", Address(&__xpg_strerror_r)},
        {"_wcrtomb_l", Address(&WideToMultibyte)},
        {"_system", Address(&System)},
    };
    return own;
}

[[noreturn]] void Reached(const char* name) {
    std::fprintf(stderr, "The mapped bundle called %s, which this loader does not have.\n", name);
    std::abort();
}

/// A few bytes of code that call Reached with the name: mov rdi, name; mov rax, Reached; jmp rax.
void* StubFor(const std::string& name) {
    constexpr std::size_t kPage = 4096, kStub = 32;
    static std::byte* page = nullptr;
    static std::size_t used = kPage;
    if (used + kStub > kPage) {
        void* memory = mmap(nullptr, kPage, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) return nullptr;
        page = static_cast<std::byte*>(memory);
        used = 0;
    }
    std::byte* stub = page + used;
    used += kStub;
    const char* text = strdup(name.c_str());
    const auto function = std::bit_cast<void*>(&Reached);
    std::memcpy(stub, "\x48\xBF", 2);
    std::memcpy(stub + 2, &text, 8);
    std::memcpy(stub + 10, "\x48\xB8", 2);
    std::memcpy(stub + 12, &function, 8);
    std::memcpy(stub + 20, "\xFF\xE0", 2);
    return stub;
}

}  // namespace

void* SystemSymbol(const std::string& name) {
    if (const auto own = Own().find(name); own != Own().end()) return own->second;
    if (void* threading = ThreadingSymbol(name)) return threading;
    const std::string plain = name.starts_with('_') ? name.substr(1) : name;
    if (IsNeverCalled(plain)) return StubFor(plain);
    if (IsSame(plain)) return dlsym(RTLD_DEFAULT, plain.c_str());
    return nullptr;
}

void AnnounceUnwindTables(const MachoImage* image) {
    UnwindImages().push_back(image);
}

const char* LastSystemCommand() {
    return lastCommand;
}
