// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "tests/packaging/mapped/dyld_opcodes.h"

#include <stdexcept>

namespace {

constexpr std::uint64_t kPointer = 8;
constexpr unsigned kTypePointer = 1;

/// Takes numbers and names off the front of the list.
class Reader {
 public:
    explicit Reader(std::span<const std::byte> bytes) : bytes_(bytes) {}
    bool AtEnd() const { return at_ >= bytes_.size(); }
    unsigned Byte() {
        if (AtEnd()) throw std::runtime_error("its list of pointers is cut off");
        return static_cast<unsigned>(bytes_[at_++]);
    }
    std::uint64_t Unsigned() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;; shift += 7) {
            const unsigned byte = Byte();
            if (shift < 64) value |= std::uint64_t{byte & 0x7F} << shift;
            if (!(byte & 0x80)) return value;
        }
    }
    std::int64_t Signed() {
        std::uint64_t value = 0;
        for (unsigned shift = 0;;) {
            const unsigned byte = Byte();
            if (shift < 64) value |= std::uint64_t{byte & 0x7F} << shift;
            shift += 7;
            if (byte & 0x80) continue;
            if ((byte & 0x40) && shift < 64) value |= ~std::uint64_t{0} << shift;
            return static_cast<std::int64_t>(value);
        }
    }
    std::string Name() {
        std::string name;
        while (const unsigned byte = Byte()) name += static_cast<char>(byte);
        return name;
    }

 private:
    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
};

void RequirePointer(unsigned type) {
    if (type != kTypePointer) throw std::runtime_error("it fixes up something other than pointers");
}

[[noreturn]] void UnknownOpcode() {
    throw std::runtime_error("its list of pointers has an opcode unknown here");
}

}  // namespace

void RunRebaseOpcodes(std::span<const std::byte> opcodes,
                      const std::function<void(unsigned segment, std::uint64_t offset)>& rebase) {
    Reader reader(opcodes);
    unsigned segment = 0;
    std::uint64_t offset = 0;
    const auto repeat = [&](std::uint64_t times, std::uint64_t step) {
        for (; times > 0; --times, offset += step) rebase(segment, offset);
    };
    while (!reader.AtEnd()) {
        const unsigned byte = reader.Byte(), immediate = byte & 0x0F;
        switch (byte & 0xF0) {
            case 0x00:  // done
                return;
            case 0x10:
                RequirePointer(immediate);
                break;
            case 0x20:
                segment = immediate;
                offset = reader.Unsigned();
                break;
            case 0x30:
                offset += reader.Unsigned();
                break;
            case 0x40:
                offset += immediate * kPointer;
                break;
            case 0x50:
                repeat(immediate, kPointer);
                break;
            case 0x60:
                repeat(reader.Unsigned(), kPointer);
                break;
            case 0x70:
                repeat(1, kPointer + reader.Unsigned());
                break;
            case 0x80: {
                const std::uint64_t times = reader.Unsigned();
                repeat(times, kPointer + reader.Unsigned());
                break;
            }
            default:
                UnknownOpcode();
        }
    }
}

void RunBindOpcodes(std::span<const std::byte> opcodes,
                    const std::function<void(unsigned segment, std::uint64_t offset, const std::string& name,
                                             std::int64_t addend)>& bind) {
    Reader reader(opcodes);
    unsigned segment = 0;
    std::uint64_t offset = 0;
    std::int64_t addend = 0;
    std::string name;
    const auto repeat = [&](std::uint64_t times, std::uint64_t step) {
        for (; times > 0; --times, offset += step) bind(segment, offset, name, addend);
    };
    while (!reader.AtEnd()) {
        const unsigned byte = reader.Byte(), immediate = byte & 0x0F;
        switch (byte & 0xF0) {
            case 0x00:  // the end of the list, or of one entry of a lazy one, or padding
            case 0x10:  // which library the name is to come from: here one resolver answers for all of them
            case 0x30:
                break;
            case 0x20:
                reader.Unsigned();
                break;
            case 0x40:
                name = reader.Name();
                break;
            case 0x50:
                RequirePointer(immediate);
                break;
            case 0x60:
                addend = reader.Signed();
                break;
            case 0x70:
                segment = immediate;
                offset = reader.Unsigned();
                break;
            case 0x80:
                offset += reader.Unsigned();
                break;
            case 0x90:
                repeat(1, kPointer);
                break;
            case 0xA0:
                bind(segment, offset, name, addend);
                offset += kPointer + reader.Unsigned();
                break;
            case 0xB0:
                repeat(1, kPointer + immediate * kPointer);
                break;
            case 0xC0: {
                const std::uint64_t times = reader.Unsigned();
                repeat(times, kPointer + reader.Unsigned());
                break;
            }
            default:
                UnknownOpcode();
        }
    }
}
