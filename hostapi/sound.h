// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Audio records; part of the command records, never used by this effect.
// Field order and size are the ABI: hostapi/abi_asserts.cpp proves every offset.

#include "hostapi/basic_types.h"

typedef A_short PF_SoundFormat;
typedef A_short PF_SoundSampleSize;
typedef A_short PF_SoundChannels;

inline constexpr PF_SoundFormat PF_UNSIGNED_PCM = 0;
inline constexpr PF_SoundFormat PF_SIGNED_PCM = 1;
inline constexpr PF_SoundFormat PF_SIGNED_FLOAT = 2;

inline constexpr PF_SoundSampleSize PF_SSS_1 = 1;
inline constexpr PF_SoundSampleSize PF_SSS_2 = 2;
inline constexpr PF_SoundSampleSize PF_SSS_4 = 4;

inline constexpr PF_SoundChannels PF_Channels_MONO = 1;
inline constexpr PF_SoundChannels PF_Channels_STEREO = 2;

/// How samples are stored; the rate in samples per second.
struct PF_SoundFormatInfo {
    PF_FpLong rateF;
    PF_SoundChannels num_channels;
    PF_SoundFormat format;
    PF_SoundSampleSize sample_size;
};

/// A piece of sound; the samples stay the host's.
struct PF_SoundWorld {
    PF_SoundFormatInfo fi;
    A_long num_samples;
    void* dataP;
};
