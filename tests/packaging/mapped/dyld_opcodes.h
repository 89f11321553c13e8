// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The two little languages in which a Mach-O file lists the pointers that its loader must fix.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

/// Calls `rebase` with segment and offset of each pointer that holds an address inside the image. Throws
/// std::runtime_error at an opcode that it does not know.
void RunRebaseOpcodes(std::span<const std::byte> opcodes,
                      const std::function<void(unsigned segment, std::uint64_t offset)>& rebase);

/// Calls `bind` for each pointer to an imported name, of an eager or a lazy list.
void RunBindOpcodes(std::span<const std::byte> opcodes,
                    const std::function<void(unsigned segment, std::uint64_t offset, const std::string& name,
                                             std::int64_t addend)>& bind);
