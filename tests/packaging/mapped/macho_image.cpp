// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/packaging/mapped/macho_image.h"

#include <sys/mman.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/packaging/mapped/dyld_opcodes.h"
#include "tests/packaging/mapped/thread_locals.h"

namespace {

template <typename Record>
Record ReadRecord(std::span<const std::byte> bytes, std::size_t offset) {
    if (offset + sizeof(Record) > bytes.size()) throw std::runtime_error("the file is cut off");
    Record record;
    std::memcpy(&record, bytes.data() + offset, sizeof(Record));
    return record;
}

std::uint32_t FromBig(std::uint32_t value) {
    return __builtin_bswap32(value);
}

/// The x86-64 part of a universal file, or a whole single one.
std::vector<std::byte> ReadSlice(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::vector<char> chars{std::istreambuf_iterator<char>(stream), {}};
    if (chars.empty()) throw std::runtime_error("the file cannot be read or is empty");
    const std::span bytes = std::as_bytes(std::span(chars));
    const auto fat = ReadRecord<FatHeader>(bytes, 0);
    if (FromBig(fat.magic) != kFatMagic) return {bytes.begin(), bytes.end()};
    for (std::uint32_t i = 0; i < FromBig(fat.count); ++i) {
        const auto arch = ReadRecord<FatArch>(bytes, sizeof(FatHeader) + i * sizeof(FatArch));
        if (FromBig(arch.cpuType) != kCpuX86_64) continue;
        const auto part = bytes.subspan(FromBig(arch.offset), FromBig(arch.size));
        return {part.begin(), part.end()};
    }
    throw std::runtime_error("the file has no x86-64 slice");
}

std::string NameOf(const char (&field)[16]) {
    return {field, strnlen(field, sizeof(field))};
}

}  // namespace

std::unique_ptr<MachoImage> MachoImage::Map(const std::filesystem::path& file, const Resolver& resolve) {
    std::unique_ptr<MachoImage> image(new MachoImage);
    image->slice_ = ReadSlice(file);
    image->ReadCommands();
    image->MapSegments();
    image->Rebase();
    const DyldInfoCommand& info = image->dyldInfo_;
    if (info.weakBindSize != 0) throw std::runtime_error("it shares weak symbols with other images");
    image->Bind(info.bindOffset, info.bindSize, resolve);
    image->Bind(info.lazyBindOffset, info.lazyBindSize, resolve);
    image->SetUpThreadLocals();
    image->Protect();
    return image;
}

MachoImage::~MachoImage() {
    if (base_) munmap(base_, mappedSize_);
}

void MachoImage::ReadCommands() {
    const auto header = ReadRecord<MachHeader>(slice_, 0);
    if (header.magic != kMachMagic64 || header.cpuType != kCpuX86_64 || header.fileType != kFileTypeBundle) {
        throw std::runtime_error("it is not a 64-bit Mach-O bundle for x86-64");
    }
    std::size_t offset = sizeof(MachHeader);
    for (std::uint32_t i = 0; i < header.commandCount; ++i) {
        const auto command = ReadRecord<LoadCommand>(slice_, offset);
        if (command.command == kCommandSymtab) symtab_ = ReadRecord<SymtabCommand>(slice_, offset);
        if (command.command == kCommandDyldInfoOnly) dyldInfo_ = ReadRecord<DyldInfoCommand>(slice_, offset);
        if (command.command == kCommandSegment64) {
            segments_.push_back(ReadRecord<SegmentCommand>(slice_, offset));
            for (std::uint32_t s = 0; s < segments_.back().sectionCount; ++s) {
                const std::size_t at = offset + sizeof(SegmentCommand) + s * sizeof(Section);
                sections_.push_back(ReadRecord<Section>(slice_, at));
            }
        }
        offset += command.size;
    }
    if (segments_.empty() || dyldInfo_.command == 0) {
        throw std::runtime_error("it has no segments, or fixes up its pointers in a way unknown here");
    }
}

void MachoImage::MapSegments() {
    for (const SegmentCommand& segment : segments_) {
        mappedSize_ = std::max<std::size_t>(mappedSize_, segment.vmAddress + segment.vmSize);
    }
    void* memory = mmap(nullptr, mappedSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::runtime_error("there is no memory for it");
    base_ = static_cast<std::byte*>(memory);
    for (const SegmentCommand& segment : segments_) {
        if (segment.fileOffset + segment.fileSize > slice_.size()) throw std::runtime_error("the file is cut off");
        std::memcpy(base_ + segment.vmAddress, slice_.data() + segment.fileOffset, segment.fileSize);
    }
}

void MachoImage::Rebase() {
    const std::span<const std::byte> opcodes = std::span(slice_).subspan(dyldInfo_.rebaseOffset, dyldInfo_.rebaseSize);
    RunRebaseOpcodes(opcodes, [this](unsigned segment, std::uint64_t offset) {
        std::byte* place = base_ + segments_.at(segment).vmAddress + offset;
        std::uint64_t pointer;
        std::memcpy(&pointer, place, sizeof(pointer));
        pointer += std::bit_cast<std::uint64_t>(base_);
        std::memcpy(place, &pointer, sizeof(pointer));
    });
}

void MachoImage::Bind(std::uint32_t offset, std::uint32_t size, const Resolver& resolve) {
    const std::span<const std::byte> opcodes = std::span(slice_).subspan(offset, size);
    RunBindOpcodes(opcodes, [&](unsigned segment, std::uint64_t at, const std::string& name, std::int64_t addend) {
        void* target = resolve(name);
        if (!target) throw std::runtime_error("there is nothing here to bind its import " + name + " to");
        const std::uint64_t pointer = std::bit_cast<std::uint64_t>(target) + static_cast<std::uint64_t>(addend);
        std::memcpy(base_ + segments_.at(segment).vmAddress + at, &pointer, sizeof(pointer));
    });
}

void MachoImage::SetUpThreadLocals() {
    std::uint64_t first = 0;
    for (const Section& section : sections_) {
        const std::uint32_t type = section.flags & kSectionTypeMask;
        if (type != kSectionThreadLocalData && type != kSectionThreadLocalZero) continue;
        if (threadLocals_.size == 0) first = section.address;
        threadLocals_.size = section.address + section.size - first;
        if (type == kSectionThreadLocalData) threadLocals_.dataSize = threadLocals_.size;
    }
    threadLocals_.data = base_ + first;
    for (const Section& section : sections_) {
        if ((section.flags & kSectionTypeMask) != kSectionThreadLocalDescriptors) continue;
        auto* descriptors = reinterpret_cast<ThreadLocalDescriptor*>(base_ + section.address);
        for (std::size_t i = 0; i < section.size / sizeof(ThreadLocalDescriptor); ++i) {
            descriptors[i].thunk = ThreadLocalThunk();
            descriptors[i].key = std::bit_cast<std::uint64_t>(&threadLocals_);
        }
    }
}

void MachoImage::Protect() {
    for (const SegmentCommand& segment : segments_) {
        if (segment.vmSize == 0) continue;
        // The format's bits for reading, writing and running are the system's.
        int protection = segment.protection;
        // The loader writes its pointers there and closes it, as this one has now done.
        if (NameOf(segment.name) == "__DATA_CONST") protection &= ~PROT_WRITE;
        if (mprotect(base_ + segment.vmAddress, segment.vmSize, protection) != 0) {
            throw std::runtime_error("its memory cannot be protected");
        }
    }
}

void MachoImage::Initialise() const {
    using Initialiser = void (*)(int, const char**, const char**, const char**, const void*);
    for (const Section& section : sections_) {
        if ((section.flags & kSectionTypeMask) != kSectionInitialisers) continue;
        const auto* list = reinterpret_cast<const Initialiser*>(base_ + section.address);
        const char* none[] = {nullptr};
        for (std::size_t i = 0; i < section.size / sizeof(Initialiser); ++i) list[i](0, none, none, none, nullptr);
    }
}

void* MachoImage::Exported(const std::string& name) const {
    for (std::uint32_t i = 0; i < symtab_.symbolCount; ++i) {
        const auto symbol = ReadRecord<Symbol>(slice_, symtab_.symbolOffset + i * sizeof(Symbol));
        const bool defined = (symbol.type & kSymbolStab) == 0 && (symbol.type & kSymbolTypeMask) == kSymbolInSection;
        if (!defined || !(symbol.type & kSymbolExternal)) continue;
        const char* text = reinterpret_cast<const char*>(slice_.data() + symtab_.stringOffset + symbol.name);
        if (name == text) return base_ + symbol.value;
    }
    return nullptr;
}

bool MachoImage::Contains(const void* address) const {
    return address >= base_ && address < base_ + mappedSize_;
}

std::span<const std::byte> MachoImage::SectionBytes(const std::string& segment, const std::string& section) const {
    for (const Section& each : sections_) {
        if (NameOf(each.segment) == segment && NameOf(each.name) == section) {
            return {base_ + each.address, static_cast<std::size_t>(each.size)};
        }
    }
    return {};
}
