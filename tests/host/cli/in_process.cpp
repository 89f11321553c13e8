// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/host/cli/in_process.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>

#include "host/cli/results.h"
#include "host/cli/run_program.h"
#include "host/loading/program_file.h"

namespace umbrant::host {

namespace {

void FlushStandardStreams() {
    std::cout.flush();
    std::fflush(stdout);
    std::fflush(stderr);
}

/// One of the process's streams as a file in memory.
class CapturedStream {
 public:
    explicit CapturedStream(int stream) : stream_(stream) {
        kept_ = fcntl(stream, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        file_ = memfd_create("umbrant_test_stream", MFD_CLOEXEC);
        if (kept_ < 0 || file_ < 0 || dup2(file_, stream) < 0) {
            std::perror("cannot capture a standard stream");
            std::abort();
        }
    }
    ~CapturedStream() {
        dup2(kept_, stream_);
        close(kept_);
        close(file_);
    }
    CapturedStream(const CapturedStream&) = delete;
    CapturedStream& operator=(const CapturedStream&) = delete;

    std::string Text() const {
        std::string text;
        char buffer[4096];
        for (ssize_t count; (count = pread(file_, buffer, sizeof(buffer), static_cast<off_t>(text.size()))) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }

 private:
    const int stream_;
    int kept_ = -1;
    int file_ = -1;
};

class WorkingFolder {
 public:
    explicit WorkingFolder(const std::filesystem::path& folder) { std::filesystem::current_path(folder); }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
    const std::filesystem::path before_ = std::filesystem::current_path();
};

class WithoutVariable {
 public:
    explicit WithoutVariable(const char* name) : name_(name) {
        if (const char* value = std::getenv(name)) before_ = value;
        unsetenv(name);
    }
    ~WithoutVariable() {
        if (before_) setenv(name_, before_->c_str(), 1);
    }
    WithoutVariable(const WithoutVariable&) = delete;
    WithoutVariable& operator=(const WithoutVariable&) = delete;

 private:
    const char* name_;
    std::optional<std::string> before_;
};

/// The module beside the program is its own, and processes for other modules are those of the program.
[[maybe_unused]] const bool kStandsIn = [] {
    StandInForProgram(UMBRANT_PROGRAM);
    return true;
}();

}  // namespace

Outcome RunInProcess(const Folder& folder, const std::vector<std::string>& arguments) {
    std::vector<const char*> words = {UMBRANT_PROGRAM};
    for (const std::string& argument : arguments) words.push_back(argument.c_str());
    const WorkingFolder enter(folder.Path());
    const WithoutVariable unnamed("UMBRANT_MODULE");
    Outcome outcome;
    FlushStandardStreams();
    {
        const CapturedStream out(STDOUT_FILENO);
        const CapturedStream err(STDERR_FILENO);
        KeepStandardOutputForResults();
        outcome.code = RunProgram(static_cast<int>(words.size()), words.data());
        FlushStandardStreams();
        GiveStandardOutputBack();
        outcome.out = out.Text();
        outcome.err = err.Text();
    }
    return outcome;
}

}  // namespace umbrant::host
