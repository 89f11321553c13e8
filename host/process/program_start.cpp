// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/program_start.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "host/process/interruption.h"

namespace umbrant::host {

namespace {

constexpr mode_t kFileMode = 0600;

struct Pipe {
    int reads = -1;
    int writes = -1;

    Pipe() = default;
    ~Pipe() {
        for (const int end : {reads, writes}) {
            if (end >= 0) close(end);
        }
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    bool Open() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return false;
        reads = ends[0];
        writes = ends[1];
        return true;
    }
};

bool IsPipe(const Stream& stream) {
    return stream.kind == Stream::Kind::kPipe || stream.kind == Stream::Kind::kLastLine;
}

/// What the child does before it becomes the program.
class Actions {
 public:
    Actions() { posix_spawn_file_actions_init(&actions_); }
    ~Actions() { posix_spawn_file_actions_destroy(&actions_); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    void Enter(const std::string& folder) {
        if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
    }
    /// `pipe` is the child's end, where the stream is a pipe.
    void Connect(const Stream& stream, int target, int pipe) {
        const int mode = target == STDIN_FILENO ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
        switch (stream.kind) {
            case Stream::Kind::kInherited:
                break;
            case Stream::Kind::kNothing:
                Open("/dev/null", target, target == STDIN_FILENO ? O_RDONLY : O_WRONLY);
                break;
            case Stream::Kind::kFile:
                Open(stream.file, target, mode);
                break;
            case Stream::Kind::kDescriptor:
                Take(stream.descriptor, target);
                break;
            case Stream::Kind::kAsOutput:
                Take(STDOUT_FILENO, target);
                break;
            case Stream::Kind::kPipe:
            case Stream::Kind::kLastLine:
                Take(pipe, target);
                break;
        }
    }
    void Take(int descriptor, int target) { posix_spawn_file_actions_adddup2(&actions_, descriptor, target); }
    void CloseFrom(int first) { posix_spawn_file_actions_addclosefrom_np(&actions_, first); }

    const posix_spawn_file_actions_t* Get() const { return &actions_; }

 private:
    void Open(const std::string& file, int target, int mode) {
        posix_spawn_file_actions_addopen(&actions_, target, file.c_str(), mode, kFileMode);
    }

    posix_spawn_file_actions_t actions_;
};

/// The signals and the process group of the program.
class Attributes {
 public:
    explicit Attributes(bool isIsolated) {
        posix_spawnattr_init(&attributes_);
        sigset_t blocked, usual;
        sigemptyset(&usual);
        if (isIsolated) {
            sigemptyset(&blocked);
            sigfillset(&usual);
        } else {
            blocked = SignalMaskForChildren();
            sigaddset(&usual, SIGPIPE);
        }
        posix_spawnattr_setsigmask(&attributes_, &blocked);
        posix_spawnattr_setsigdefault(&attributes_, &usual);
        posix_spawnattr_setpgroup(&attributes_, 0);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const posix_spawnattr_t* Get() const { return &attributes_; }

 private:
    posix_spawnattr_t attributes_;
};

std::vector<std::string> Variables(const std::vector<std::string>& changes) {
    std::vector<std::string> variables;
    for (char** each = environ; each && *each; ++each) variables.emplace_back(*each);
    for (const std::string& change : changes) {
        const std::string name = change.substr(0, change.find('=')) + "=";
        std::erase_if(variables, [&](const std::string& variable) { return variable.starts_with(name); });
        if (change.find('=') != std::string::npos) variables.push_back(change);
    }
    return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> list;
    for (std::string& text : texts) list.push_back(text.data());
    list.push_back(nullptr);
    return list;
}

}  // namespace

int StartProcess(const ProgramStart& start, int& process, ProgramPipes& pipes) {
    Pipe input, output, errors;
    if (IsPipe(start.input) && !input.Open()) return errno;
    if (IsPipe(start.output) && !output.Open()) return errno;
    if (IsPipe(start.errors) && !errors.Open()) return errno;

    Actions actions;
    actions.Enter(start.folder);
    actions.Connect(start.input, STDIN_FILENO, input.reads);
    actions.Connect(start.output, STDOUT_FILENO, output.writes);
    actions.Connect(start.errors, STDERR_FILENO, errors.writes);
    if (start.descriptor >= 0) actions.Take(start.descriptor, kPassedDescriptor);
    // A library may have opened files that would stay open over the start of a program, an output among them.
    if (start.isIsolated) actions.CloseFrom(start.descriptor >= 0 ? kPassedDescriptor + 1 : kPassedDescriptor);

    const Attributes attributes(start.isIsolated);
    std::vector<std::string> words = {start.name.empty() ? start.program : start.name};
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
    std::vector<std::string> variables = Variables(start.environment);
    const int error = posix_spawnp(&process, start.program.c_str(), actions.Get(), attributes.Get(),
                                   Pointers(words).data(), Pointers(variables).data());
    if (error != 0) return error;
    pipes.input = std::exchange(input.writes, -1);
    pipes.output = std::exchange(output.reads, -1);
    pipes.errors = std::exchange(errors.reads, -1);
    return 0;
}

}  // namespace umbrant::host
