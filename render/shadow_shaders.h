// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The five GPU programs of a shadow and what each receives before it draws. Every fragment shader works on one channel,
// the layer's alpha kept in red; colour comes later, on the CPU.
//
// | slot | fragment shader | used for                                    | uniforms read                           |
// |------|-----------------|---------------------------------------------|-----------------------------------------|
// | 0    | invert.frag     | inner shadow: inverted alpha                | xform, opacityF, scaleW, scaleH         |
// | 1    | blur_w.frag     | first blur pass of every shadow type        | xform, steps, stride, opacityF, scaleW, |
// |      |                 |                                             | scaleH                                  |
// | 2    | blur_h.frag     | second blur pass                            | xform, steps, stride                    |
// | 3    | copy_a.frag     | places a blurred sample in the output       | xform                                   |
// | 4    | copy_b.frag     | radial shadow: plain copies                 | xform                                   |

#include "hostapi/commands.h"

class Program;
struct myParams;

namespace umbrant::effect {

inline constexpr int kProgramInvert = 0;
inline constexpr int kProgramBlurW = 1;
inline constexpr int kProgramBlurH = 2;
inline constexpr int kProgramPlace = 3;
inline constexpr int kProgramCopy = 4;
inline constexpr int kProgramCount = 5;

}  // namespace umbrant::effect

/// Builds the five programs into five consecutive objects, slot 0 first, in the calling thread's current context. Every
/// one is attempted even after a failure; true only when all succeeded.
bool InitPrograms(Program* programs, PF_OutData* out_data);

namespace umbrant::effect {

// The senders take the program in use by id and look every uniform up by name each time. An index beyond
// `params->samples` or `params->framebuffers` throws std::out_of_range.

}  // namespace umbrant::effect

/// Horizontal blur. Leaves blurAmount (pixels), blurSteps (taps each side) and blurStride (input texture widths) in
/// `params` for SendBlurHUniforms.
void SendBlurWUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId);

/// Vertical blur; reads what SendBlurWUniforms left for the same sample, which must therefore run first.
void SendBlurHUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId);

/// Placement of a blurred sample in the output. Looks "xform" up on program 3 of the thread's render state, not on
/// `programId`.
void SendXformUniforms(myParams* params, int* sampleIndex, int* framebufferIndex, unsigned* programId,
                       PF_OutData* out_data);
