// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/image/encoded_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

namespace umbrant::host {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 17;

}  // namespace

void EncodedFile::Write(std::size_t at, std::span<const std::byte> bytes) {
    size_ = std::max(size_, at + bytes.size());
    // The callers are C libraries, which no exception may pass.
    try {
        while (blocks_.size() * kBlock < at + bytes.size()) blocks_.push_back(std::make_unique<std::byte[]>(kBlock));
    } catch (const std::bad_alloc&) {
        problem_ = "not enough memory";
        return;
    }
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), kBlock - at % kBlock);
        std::memcpy(blocks_[at / kBlock].get() + at % kBlock, bytes.data(), count);
        bytes = bytes.subspan(count);
        at += count;
    }
}

std::size_t EncodedFile::Read(std::size_t at, std::span<std::byte> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size() && at < std::min(size_, blocks_.size() * kBlock)) {
        const std::size_t count = std::min({bytes.size() - done, size_ - at, kBlock - at % kBlock});
        std::memcpy(bytes.data() + done, blocks_[at / kBlock].get() + at % kBlock, count);
        done += count;
        at += count;
    }
    return done;
}

std::optional<std::string> EncodedFile::CopyTo(int descriptor) const {
    if (problem_) return problem_;
    for (std::size_t i = 0; i * kBlock < size_; ++i) {
        const std::size_t count = std::min(kBlock, size_ - i * kBlock);
        if (auto problem = WriteAll(descriptor, {blocks_[i].get(), count})) return problem;
    }
    return std::nullopt;
}

void EncodedFile::CopyFrom(int descriptor) {
    blocks_.clear();
    size_ = 0;
    const auto block = std::make_unique<std::byte[]>(kBlock);
    lseek(descriptor, 0, SEEK_SET);
    while (!problem_) {
        const ssize_t count = ::read(descriptor, block.get(), kBlock);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) problem_ = std::strerror(errno);
        if (count <= 0) return;
        Append({block.get(), static_cast<std::size_t>(count)});
    }
}

std::optional<std::string> WriteAll(int descriptor, std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::strerror(errno);
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return std::nullopt;
}

}  // namespace umbrant::host
