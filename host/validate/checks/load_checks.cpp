// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 1: the module as a file, its registration, and what loading leaves behind.

#include <dlfcn.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <memory>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/module_file.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"
#include "host/validate/runner/timing.h"
#include "hostapi/registration.h"

namespace umbrant::host {

namespace {

constexpr char kRegistrationExport[] = "PluginDataEntryFunction";
constexpr std::size_t kLongestName = 31;

using RegistrationFunction = PF_Err (*)(PF_PluginDataPtr, PF_PluginDataCB, SPBasicSuite*, const char*, const char*);

struct Unloader {
    void operator()(void* library) const { dlclose(library); }
};
using Library = std::unique_ptr<void, Unloader>;

Library Load(CheckRun& run) {
    std::error_code ignored;
    const auto path = std::filesystem::absolute(run.Options().module, ignored);
    Library library(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library) {
        const char* reason = dlerror();
        run.FailAsNoModule(fmt::format("it cannot be loaded: {}", reason ? reason : "no reason given"));
    }
    return library;
}

RegistrationFunction RegistrationOf(CheckRun& run, void* library) {
    const auto entry = reinterpret_cast<RegistrationFunction>(dlsym(library, kRegistrationExport));
    if (!entry) {
        run.FailAsNoModule(fmt::format("{} is not exported; an effect module exports it", kRegistrationExport));
    }
    return entry;
}

/// What the callback was given.
struct Said {
    int calls = 0;
    PF_PluginDataPtr pointer = nullptr;
    std::string name, matchName, category, entryPoint;
    bool complete = false;
    A_long kind = 0, apiMajor = 0, apiMinor = 0, reservedInfo = 0;
    A_Err answer = PF_Err_NONE;  ///< what the callback returns
};

A_Err Listen(PF_PluginDataPtr pointer, const A_u_char* name, const A_u_char* matchName, const A_u_char* category,
             const A_u_char* entryPoint, A_long kind, A_long apiMajor, A_long apiMinor, A_long reservedInfo) {
    Said& said = *reinterpret_cast<Said*>(pointer);
    const auto text = [](const A_u_char* bytes) {
        return bytes ? std::string(reinterpret_cast<const char*>(bytes)) : std::string();
    };
    ++said.calls;
    said.complete = name && matchName && category && entryPoint;
    said.name = text(name);
    said.matchName = text(matchName);
    said.category = text(category);
    said.entryPoint = text(entryPoint);
    said.kind = kind;
    said.apiMajor = apiMajor;
    said.apiMinor = apiMinor;
    said.reservedInfo = reservedInfo;
    return said.answer;
}

PF_Err Register(RegistrationFunction entry, Said& said) {
    return entry(reinterpret_cast<PF_PluginDataPtr>(&said), Listen, nullptr, "umbrant", "1");
}

void LoadsWithBothEntries(CheckRun& run) {
    const Library library = Load(run);
    const RegistrationFunction entry = RegistrationOf(run, library.get());
    Said said;
    Register(entry, said);
    if (!said.entryPoint.empty() && !dlsym(library.get(), said.entryPoint.c_str())) {
        run.Fail(fmt::format("the registered entry '{}' is not exported", said.entryPoint));
    }
}

void RegistersOnce(CheckRun& run) {
    const Library library = Load(run);
    const RegistrationFunction entry = RegistrationOf(run, library.get());
    Said said;
    if (const PF_Err error = Register(entry, said)) run.Fail(fmt::format("registration returned {}", error));
    if (said.calls != 1) run.FailAndEnd(fmt::format("the callback was called {} times, not once", said.calls));
    if (!said.complete) run.Fail("a name is missing: name, match name, category and entry point are needed");
    for (const auto& [what, text] : {std::pair("name", said.name), std::pair("match name", said.matchName),
                                     std::pair("category", said.category)}) {
        if (text.empty()) run.Fail(fmt::format("the {} is empty", what));
        if (text.size() > kLongestName) {
            run.Fail(fmt::format("the {} has {} characters; there is room for {}", what, text.size(), kLongestName));
        }
    }
    if (said.kind != kPluginKind_Effect) run.Fail(fmt::format("the kind is {:#x}, not 'eFKT'", said.kind));
    if (said.apiMajor != 13 || said.apiMinor < 0 || said.apiMinor > 28) {
        run.Fail(fmt::format("the interface version is {}.{}; this host has 13.28", said.apiMajor, said.apiMinor));
    }
    if (said.reservedInfo != 8) run.Fail(fmt::format("the reserved number is {}, not 8", said.reservedInfo));

    constexpr A_Err kRefused = 1001;
    Said refused;
    refused.answer = kRefused;
    if (const PF_Err error = Register(entry, refused); error != kRefused) {
        run.Fail(fmt::format("the callback refused with {}, but registration returned {}", kRefused, error));
    }
}

/// Libraries that every machine with a graphics system has.
bool IsSystemLibrary(const std::string& name) {
    static constexpr const char* kKnown[] = {
        "libc.so",      "libm.so",     "libdl.so",  "libpthread.so", "librt.so",  "libstdc++.so", "libgcc_s.so",
        "ld-linux",     "libGL.so",    "libEGL.so", "libOpenGL.so",  "libGLX.so", "libvulkan.so", "libOpenCL.so",
        "libatomic.so", "libc++.so",   "libc++abi", "libgomp.so",    "libomp.so", "libasan.so",   "libtsan.so",
        "libubsan.so",  "libclang_rt", "libz.so",   "liblsan.so"};
    return std::any_of(std::begin(kKnown), std::end(kKnown),
                       [&](const char* known) { return name.starts_with(known); });
}

void ExportsItsEntriesAlone(CheckRun& run) {
    const auto file = ModuleFile::Read(run.Options().module);
    if (!file) run.FailAndEnd("the file cannot be read");
    if (!file->isElf) run.Skip("the file is not of this system's kind, so its symbols cannot be read");
    std::string entryPoint;
    {
        const Library library = Load(run);
        Said said;
        Register(RegistrationOf(run, library.get()), said);
        entryPoint = said.entryPoint;
    }
    for (const std::string& name : file->exports) {
        // A module may have both registrations of the interface, the newer and the older.
        if (name == kRegistrationExport || name == "PluginDataEntryFunction2" || name == entryPoint) continue;
        run.Fail(fmt::format("'{}' is exported besides the entries; it could clash with a host's symbol of that name",
                             name));
    }
    for (const std::string& library : file->needed) {
        if (!IsSystemLibrary(library)) run.Warn(fmt::format("{} is needed, which a user may not have", library));
    }
}

/// One start of the effect in a process of its own, and another in the same process; false when it does not start.
bool TimeStarts(CheckRun& run, std::vector<TimedTry>& cold, std::vector<TimedTry>& warm) {
    const auto store = [](CheckRun& part, const std::string& name, const TimedTry& one) {
        part.Count(name + " elapsed", one.elapsed);
        part.Count(name + " processor", one.processor);
        part.Count(name + " stretch", one.pace.stretch);
        part.Count(name + " slowness", one.pace.slowness);
    };
    const CheckResult result = RunSubCheck(run, {"a start", [&](CheckRun& part) {
                                                     const auto start = [&] { CheckFixture fixture(part); };
                                                     store(part, "cold", TimeOf(start));
                                                     store(part, "warm", TimeOf(start));
                                                 }});
    for (const Finding& finding : result.findings) run.Note(finding);
    const auto read = [&](const std::string& name) {
        const auto figure = [&](const char* part) {
            const auto found = result.figures.find(name + part);
            return found == result.figures.end() ? 0.0 : found->second;
        };
        return TimedTry{figure(" elapsed"), figure(" processor"), {figure(" stretch"), figure(" slowness")}};
    };
    cold.push_back(read("cold"));
    warm.push_back(read("warm"));
    return !run.Failed();
}

double BestOf(const std::vector<TimedTry>& tries) {
    const auto faster = [](const TimedTry& a, const TimedTry& b) { return a.elapsed < b.elapsed; };
    return std::min_element(tries.begin(), tries.end(), faster)->elapsed;
}

void StartsSwiftly(CheckRun& run) {
    constexpr double kCold = 1000, kWarm = 100;
    constexpr std::size_t kMostTries = 7;
    std::vector<TimedTry> cold, warm;
    Claim coldClaim = Claim::kUnclear, warmClaim = Claim::kUnclear;
    const auto isOpen = [&] { return coldClaim == Claim::kUnclear || warmClaim == Claim::kUnclear; };
    while (isOpen() && cold.size() < kMostTries) {
        if (!TimeStarts(run, cold, warm)) return;
        coldClaim = JudgeLimit(cold, kCold);
        warmClaim = JudgeLimit(warm, kWarm);
    }
    // There the second set-up is no more than a warning, which needs no certainty.
    if (run.Options().softwareGl && warmClaim == Claim::kUnclear) warmClaim = Claim::kFails;
    run.Count("cold start, ms", BestOf(cold));
    run.Count("warm start, ms", BestOf(warm));
    const auto coldText =
        fmt::format("loading and set-up took more than {:.0f} ms: at best {:.0f} ms", kCold, BestOf(cold));
    const auto warmText =
        fmt::format("a second set-up took more than {:.0f} ms: at best {:.0f} ms", kWarm, BestOf(warm));
    if (coldClaim == Claim::kFails) run.Fail(coldText);
    if (warmClaim == Claim::kFails) {
        run.Options().softwareGl ? run.Warn(warmText + ", with software OpenGL") : run.Fail(warmText);
    }
    if (isOpen()) {
        run.Skip(NotMeasured((coldClaim == Claim::kUnclear ? coldText : warmText) +
                             ", but other programs used part of that time"));
    }
}

/// Everything that is printed while it lives goes into a file of its own.
class Capture {
 public:
    Capture() {
        std::fflush(nullptr);
        out_ = dup(STDOUT_FILENO);
        err_ = dup(STDERR_FILENO);
        file_ = std::tmpfile();
        if (!file_) return;
        dup2(fileno(file_), STDOUT_FILENO);
        dup2(fileno(file_), STDERR_FILENO);
    }
    ~Capture() {
        Restore();
        if (file_) std::fclose(file_);
    }
    std::string Text() {
        std::fflush(nullptr);
        Restore();
        std::string text;
        if (!file_) return text;
        std::rewind(file_);
        for (int c = 0; (c = std::fgetc(file_)) != EOF;) text += static_cast<char>(c);
        return text;
    }

 private:
    void Restore() {
        if (out_ < 0) return;
        dup2(out_, STDOUT_FILENO);
        dup2(err_, STDERR_FILENO);
        close(out_);
        close(err_);
        out_ = err_ = -1;
    }
    int out_ = -1, err_ = -1;
    std::FILE* file_ = nullptr;
};

void LoadsWithoutATrace(CheckRun& run) {
    const auto once = [&] {
        const Library library = Load(run);
        Said said;
        Register(RegistrationOf(run, library.get()), said);
    };
    once();  // the first load may open what the loader and the C library keep
    const int files = OpenFiles();
    const int threads = RunningThreads();
    constexpr int kTimes = 10;
    std::string text;
    {
        Capture capture;
        for (int i = 0; i < kTimes; ++i) once();
        text = capture.Text();
    }
    if (!text.empty()) run.Fail(fmt::format("loading and registering printed something: '{}'", text.substr(0, 80)));
    const int filesAfter = OpenFiles();
    const int threadsAfter = RunningThreads();
    if (filesAfter > files) {
        run.Fail(fmt::format("loading {} times left {} files open", kTimes, filesAfter - files));
    }
    if (threadsAfter > threads) {
        run.Fail(fmt::format("loading {} times left {} threads running", kTimes, threadsAfter - threads));
    }
}

}  // namespace

std::vector<Check> LoadChecks() {
    return {
        {"1.1", "it loads with every symbol found, and has both entries", LoadsWithBothEntries},
        {"1.2", "it registers one effect of this interface, and returns the host's refusal", RegistersOnce},
        {"1.3", "it exports its entries and nothing else", ExportsItsEntriesAlone},
        {"1.4", "it starts within a second, and within a tenth when loaded again", StartsSwiftly, Needs::kQuiet, 2},
        {"1.5", "loading and unloading leaves no text, file or thread behind", LoadsWithoutATrace},
    };
}

}  // namespace umbrant::host
