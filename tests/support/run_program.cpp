// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/support/run_program.h"

#include <sys/mman.h>
#include <unistd.h>

#include <span>
#include <sstream>

#include "host/process/child_process.h"

namespace umbrant::host {

namespace {

/// A file without a name for an output.
class Caught {
 public:
    explicit Caught(Stream& stream) {
        if (stream.kind != Stream::Kind::kInherited) return;
        file_ = memfd_create("output", MFD_CLOEXEC);
        stream = Stream::Descriptor(file_);
    }
    ~Caught() {
        if (file_ >= 0) close(file_);
    }
    Caught(const Caught&) = delete;
    Caught& operator=(const Caught&) = delete;

    std::string Text() const {
        std::string text;
        char bytes[1 << 16];
        for (ssize_t got;
             file_ >= 0 && (got = pread(file_, bytes, sizeof bytes, static_cast<off_t>(text.size()))) > 0;) {
            text.append(bytes, static_cast<std::size_t>(got));
        }
        return text;
    }

 private:
    int file_ = -1;
};

std::string AllOf(ChildProcess& child) {
    std::string text;
    char bytes[1 << 16];
    while (const std::size_t got = child.Read(std::as_writable_bytes(std::span(bytes)))) {
        text.append(bytes, got);
    }
    return text;
}

}  // namespace

ProgramRun RunProgram(const std::vector<std::string>& words, ProgramStart start) {
    start.program = words.at(0);
    start.arguments.assign(words.begin() + 1, words.end());
    const Caught output(start.output), errors(start.errors);
    const auto child = ChildProcess::Start(start);
    if (!child) return {-1, {}, child.error().sentence};
    const std::string piped = AllOf(**child);
    const int code = (*child)->Wait().code;
    return {code, piped + output.Text(), errors.Text()};
}

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word);
    return words;
}

}  // namespace umbrant::host
