// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/process/files/file_owner.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = ".umbrant-";
constexpr std::string_view kSuffix = ".part";
/// Lower case alone, for file systems that ignore case.
constexpr std::string_view kDigits = "0123456789abcdefghijklmnopqrstuv";
constexpr unsigned kBitsOfDigit = 5;

constexpr unsigned kHostDigits = 7;
constexpr unsigned kBootDigits = 3;
constexpr unsigned kProcessDigits = 6;
constexpr unsigned kStartDigits = 7;
constexpr unsigned kCountDigits = 3;

constexpr std::uint64_t Lowest(std::uint64_t number, unsigned digits) {
    return number & ((std::uint64_t{1} << (kBitsOfDigit * digits)) - 1);
}

void Append(std::string& text, std::uint64_t number, unsigned digits) {
    for (unsigned i = digits; i-- > 0;) text += kDigits[(number >> (kBitsOfDigit * i)) & 31];
}

std::optional<std::uint64_t> Take(std::string_view& text, unsigned digits) {
    std::uint64_t number = 0;
    for (unsigned i = 0; i < digits; ++i) {
        const std::size_t digit = i < text.size() ? kDigits.find(text[i]) : std::string_view::npos;
        if (digit == std::string_view::npos) return std::nullopt;
        number = number << kBitsOfDigit | digit;
    }
    text.remove_prefix(digits);
    return number;
}

/// FNV-1a with 64 bits, folded. The same in every build of the program, which std::hash need not be.
std::uint64_t Hash(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash ^ hash >> 32;
}

/// Empty where there is no such file.
std::string Text(const std::string& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Hosts may share a name, and machines copied from each other an id. Ids of processes mean something within one
/// namespace of processes only, and times of their starts within one of clocks.
std::uint64_t HostHash() {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    std::string text = std::string(name.data()) + "\n" + Text("/etc/machine-id");
    for (const char* space : {"/proc/self/ns/pid", "/proc/self/ns/time"}) {
        std::error_code ignored;
        text += "\n" + fs::read_symlink(space, ignored).string();
    }
    return Lowest(Hash(text), kHostDigits);
}

struct ProcessFacts {
    bool isZombie = false;
    std::uint64_t start = 0;
};

/// Nothing where the system does not show them.
std::optional<ProcessFacts> FactsOf(std::uint64_t process) {
    const std::string text = Text("/proc/" + std::to_string(process) + "/stat");
    // The program's name, in brackets, may itself have brackets and spaces.
    const std::size_t bracket = text.rfind(')');
    if (bracket == std::string::npos) return std::nullopt;
    std::istringstream fields(text.substr(bracket + 1));
    std::string field;
    fields >> field;  // the third of the line, its state
    ProcessFacts facts;
    facts.isZombie = field == "Z" || field == "X";
    constexpr int kBetween = 18;
    for (int i = 0; i < kBetween; ++i) fields >> field;
    if (!(fields >> facts.start)) return std::nullopt;
    facts.start = Lowest(facts.start, kStartDigits);
    return facts;
}

/// When this host was started, in seconds of the calendar; 0 where the system does not say.
std::time_t BootTime() {
    std::ifstream in("/proc/stat");
    for (std::string word; in >> word;) {
        std::time_t time = 0;
        if (word == "btime" && in >> time) return time;
    }
    return 0;
}

}  // namespace

FileOwner ThisProcess() {
    static const std::uint64_t host = HostHash();
    static const std::uint64_t boot = Lowest(Hash(Text("/proc/sys/kernel/random/boot_id")), kBootDigits);
    const auto process = static_cast<std::uint64_t>(getpid());
    const auto facts = FactsOf(process);
    return {host, boot, Lowest(process, kProcessDigits), facts ? facts->start : 0};
}

std::string HiddenName(const FileOwner& owner, unsigned count) {
    std::string name(kPrefix);
    Append(name, owner.host, kHostDigits);
    Append(name, owner.boot, kBootDigits);
    Append(name, owner.process, kProcessDigits);
    Append(name, owner.start, kStartDigits);
    Append(name, count, kCountDigits);
    return name.append(kSuffix);
}

std::optional<FileOwner> OwnerOf(std::string_view name) {
    if (!name.starts_with(kPrefix)) return std::nullopt;
    name.remove_prefix(kPrefix.size());
    const auto host = Take(name, kHostDigits);
    const auto boot = Take(name, kBootDigits);
    const auto process = Take(name, kProcessDigits);
    const auto start = Take(name, kStartDigits);
    const auto count = Take(name, kCountDigits);
    if (!host || !boot || !process || !start || !count || name != kSuffix) return std::nullopt;
    return FileOwner{*host, *boot, *process, *start};
}

OwnerState StateOf(const FileOwner& owner, std::time_t written) {
    const FileOwner here = ThisProcess();
    if (owner.host != here.host) return OwnerState::kUnknown;
    if (owner.boot != here.boot) {
        // A file from before this boot was written before it; otherwise another host only looks like this one.
        return written < BootTime() ? OwnerState::kGone : OwnerState::kUnknown;
    }
    if (owner.process == 0) return OwnerState::kUnknown;
    if (kill(static_cast<pid_t>(owner.process), 0) != 0 && errno == ESRCH) return OwnerState::kGone;
    const auto facts = FactsOf(owner.process);
    if (!facts || owner.start == 0) return OwnerState::kUnknown;
    return facts->isZombie || facts->start != owner.start ? OwnerState::kGone : OwnerState::kAlive;
}

}  // namespace umbrant::host
