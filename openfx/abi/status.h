// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What actions and functions of suites answer.

using OfxStatus = int;

inline constexpr OfxStatus kOfxStatOK = 0;
inline constexpr OfxStatus kOfxStatFailed = 1;
inline constexpr OfxStatus kOfxStatErrFatal = 2;
inline constexpr OfxStatus kOfxStatErrUnknown = 3;
inline constexpr OfxStatus kOfxStatErrMissingHostFeature = 4;
inline constexpr OfxStatus kOfxStatErrUnsupported = 5;
inline constexpr OfxStatus kOfxStatErrExists = 6;
inline constexpr OfxStatus kOfxStatErrFormat = 7;
inline constexpr OfxStatus kOfxStatErrMemory = 8;
inline constexpr OfxStatus kOfxStatErrBadHandle = 9;
inline constexpr OfxStatus kOfxStatErrBadIndex = 10;
inline constexpr OfxStatus kOfxStatErrValue = 11;
inline constexpr OfxStatus kOfxStatReplyYes = 12;
inline constexpr OfxStatus kOfxStatReplyNo = 13;
inline constexpr OfxStatus kOfxStatReplyDefault = 14;
inline constexpr OfxStatus kOfxStatUnlicensed = 15;
inline constexpr OfxStatus kOfxStatErrImageFormat = 1000;
