// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The x86-64 slice of a Mach-O bundle, mapped into a Linux process and bound to whatever a resolver answers. Does what
// the Mac's loader does with a bundle of this project, and refuses what it does not know.
//
// It replaces that loader and nothing else: code signatures are not looked at, and imports are bound at once.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "tests/packaging/mapped/macho_format.h"

/// What thread-local variables start with, shared by all threads; each thread gets a copy when it first asks.
struct ThreadLocalTemplate {
    const std::byte* data = nullptr;  ///< the first `dataSize` bytes; the rest is zero
    std::size_t dataSize = 0;
    std::size_t size = 0;
};

class MachoImage {
 public:
    /// The address for an imported name (with its leading underscore), or null when there is none.
    using Resolver = std::function<void*(const std::string& name)>;

    /// Maps the file's x86-64 slice and binds every import. Throws std::runtime_error with one sentence when the file
    /// is not such a bundle or an import has no address. Runs none of its code.
    static std::unique_ptr<MachoImage> Map(const std::filesystem::path& file, const Resolver& resolve);
    ~MachoImage();
    MachoImage(const MachoImage&) = delete;
    MachoImage& operator=(const MachoImage&) = delete;

    /// Runs the static initialisers, in order.
    void Initialise() const;
    /// The address of an exported symbol (with its leading underscore), or null.
    void* Exported(const std::string& name) const;
    bool Contains(const void* address) const;
    /// The bytes of a section; empty when the image has none of that name.
    std::span<const std::byte> SectionBytes(const std::string& segment, const std::string& section) const;
    const void* Start() const { return base_; }

 private:
    MachoImage() = default;
    void ReadCommands();
    void MapSegments();
    void Rebase();
    void Bind(std::uint32_t offset, std::uint32_t size, const Resolver& resolve);
    void SetUpThreadLocals();
    void Protect();

    std::vector<std::byte> slice_;
    std::vector<SegmentCommand> segments_;
    std::vector<Section> sections_;
    SymtabCommand symtab_{};
    DyldInfoCommand dyldInfo_{};
    std::byte* base_ = nullptr;
    std::size_t mappedSize_ = 0;
    ThreadLocalTemplate threadLocals_;
};
