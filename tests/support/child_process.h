// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Work in a forked child, for what must not change this process (limits, users) and for what happens after a fork.

#include <chrono>
#include <functional>

/// What a child that did not end in time gives.
inline constexpr int kChildHung = -1000;
/// What a child that a signal ended gives, less the signal's number.
inline constexpr int kChildKilled = -2000;

/// Forks; the child ends with what `work` returns, without destructors and without the test program's exit functions.
/// A child that is not done by the deadline is killed. Work that throws returns 99.
int RunInChild(const std::function<int()>& work, std::chrono::seconds deadline = std::chrono::seconds(120));
