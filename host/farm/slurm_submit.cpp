// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/farm/slurm_submit.h"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/process/child_process.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kMostSaid = 1000;

/// A file in memory, for the streams of a program.
class MemoryFile {
 public:
    MemoryFile() : file_(memfd_create("umbrant_sbatch", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (file_ >= 0) close(file_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int Descriptor() const { return file_; }
    bool Holds(const std::string& text) const {
        std::size_t written = 0;
        while (written < text.size()) {
            const ssize_t count = write(file_, text.data() + written, text.size() - written);
            if (count <= 0) return false;
            written += static_cast<std::size_t>(count);
        }
        return lseek(file_, 0, SEEK_SET) == 0;
    }
    std::string Text() const {
        std::string text;
        char buffer[4096];
        for (ssize_t count; (count = pread(file_, buffer, sizeof(buffer), static_cast<off_t>(text.size()))) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }

 private:
    const int file_;
};

/// The lines of a text as one, not endless.
std::string OnOneLine(const std::string& text) {
    std::string line;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string part = text.substr(at, end - at);
        if (part.find_first_not_of(" \t\r") != std::string::npos) line += (line.empty() ? "" : "; ") + part;
        at = end + 1;
    }
    if (line.size() <= kMostSaid) return line;
    return line.substr(0, kMostSaid) + " ...";
}

}  // namespace

Result<SubmittedJob> SubmitToSlurm(const std::string& script) {
    const MemoryFile input, output, errors;
    if (input.Descriptor() < 0 || output.Descriptor() < 0 || errors.Descriptor() < 0 || !input.Holds(script)) {
        return Failure{ErrorKind::kInternal, "not enough memory for the job's script"};
    }
    ProgramStart start;
    start.program = "sbatch";
    start.arguments = {"--parsable"};
    start.input = Stream::Descriptor(input.Descriptor());
    start.output = Stream::Descriptor(output.Descriptor());
    start.errors = Stream::Descriptor(errors.Descriptor());
    const auto child = ChildProcess::Start(start);
    if (!child) {
        return Failure{ErrorKind::kFile,
                       fmt::format("cannot submit the job: sbatch cannot be started: {}; install Slurm's client, or "
                                   "leave --submit out and run sbatch with the printed job where it is installed",
                                   child.error().sentence)};
    }
    const ProcessEnd end = (*child)->Wait();
    const std::string said = OnOneLine(errors.Text());
    std::string id = OnOneLine(output.Text());
    if (end.IsWell() && !id.empty()) return SubmittedJob{std::move(id), said};
    const std::string how = end.signal != 0 ? fmt::format("sbatch was ended by signal {}", end.signal)
                            : end.IsWell()  ? "sbatch printed no number of a job"
                                            : fmt::format("sbatch ended with exit code {}", end.code);
    const std::string both = said.empty() ? id : said;
    return Failure{ErrorKind::kFile,
                   fmt::format("the job was not submitted: {}{}{}", how, both.empty() ? "" : ": ", both)};
}

int MinutesForTask(double seconds, int tries) {
    constexpr double kYear = 365.0 * 24 * 60;
    return static_cast<int>(std::clamp(std::ceil(5 * seconds * tries / 60) + 5, 6.0, kYear));
}

}  // namespace umbrant::host
