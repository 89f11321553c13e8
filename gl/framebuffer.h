// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The shadow passes' render target: one or two equally sized one-channel textures, each with its own framebuffer
// object, so that one can be read while the other is drawn ("ping pong"). The same class holds a layer's alpha as a
// texture to read, and reads its first buffer back into a host world. The calling thread's context must be current.

#include <cstdint>
#include <string>
#include <vector>

#include "entry/suites/suite_handler.h"
#include "hostapi/commands.h"
#include "platform/gl_api.h"
#include "render/render_settings.h"

/// Selects a buffer by index.
enum WHICH_BUFFER { PING = 0, PONG = 1 };

class Framebuffer {
 public:
    Framebuffer() = default;
    /// Runs `CleanUp`.
    ~Framebuffer();
    Framebuffer(const Framebuffer&) = delete;
    Framebuffer& operator=(const Framebuffer&) = delete;
    /// Takes the GL names over, so that a list of framebuffers may grow; the source keeps none.
    Framebuffer(Framebuffer&& other) noexcept;
    Framebuffer& operator=(Framebuffer&&) = delete;

    bool initialised = false;            ///< set by a successful init, cleared by `CleanUp`
    int32_t width = 0;                   ///< pixels
    int32_t height = 0;                  ///< pixels
    int32_t numBuffers = 0;              ///< 1 or 2; 0 after a zero-sized init
    int32_t bitDepth = 0;                ///< bits per channel of the host worlds exchanged with: 8 or 32
    std::string lastError;               ///< the last init error
    bool zeroSized = false;              ///< an init was asked for a width or height below 1; never cleared
    std::vector<GLuint> fbos;            ///< framebuffer objects by buffer number
    std::vector<GLuint> textures;        ///< textures by buffer number
    PF_Handle downloadHandle = nullptr;  ///< host memory, only during `DownloadBuffer`

    /// Makes `n` (1 or 2) buffers of `w` x `h` pixels for worlds of `depth` bits per channel. A width or height below 1
    /// makes an initialised object without buffers. False, with a message, when the object is already initialised, `n`
    /// is neither 1 nor 2, or GL refuses the framebuffer.
    bool FramebufferInit(int w, int h, int n, unsigned short depth, PF_OutData* out_data);

    /// Whether an init may go on; sets `zeroSized` and, on refusal, `lastError`.
    bool FBO_PreInitCheck();

    /// Turns the alpha of `world` (as deep as `params->bitDepth`: 8 or 32) into this object's only texture, row 0 at
    /// v = 0. There is no framebuffer object: `BindTAO(PING)` works, `BindFBO` throws `std::out_of_range`. Reads
    /// `in_data` and `suites` from `params`.
    /// @return 512 when an init may not go on or the depth is refused, 4 without memory, otherwise the iteration's
    /// error
    ///         (the object is then initialised all the same). Throws 516 when the host lacks a suite.
    PF_Err FBO_Init_PF_World(PF_LayerDef* world, myParams* params, PF_OutData* out_data);

    /// Draws into a buffer from here on, with its size as viewport; `clear`: to (0, 0, 0, 0) first. Misuse is only
    /// reported; an index beyond `fbos` throws `std::out_of_range`.
    void BindFBO(WHICH_BUFFER which, bool clear, PF_OutData* out_data);

    /// Binds a buffer's texture on the active texture unit. Misuse is only reported.
    void BindTAO(WHICH_BUFFER which, PF_OutData* out_data);

    /// Writes buffer PING into the alpha of `output` (same size; `bitDepth` deep) and the colour into its red, green
    /// and blue. An uninitialised object, another size and an unknown depth are reported and return no error.
    /// @return 4 without memory, otherwise the iteration's error. Throws 516 when the host lacks a suite.
    PF_Err DownloadBuffer(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colourF, PF_Pixel* colour8,
                          PF_LayerDef* output, PF_OutData* out_data);

    /// The two halves of `DownloadBuffer`: lock `downloadHandle` (and leave it locked), read the bound framebuffer into
    /// it, iterate over `output`.
    PF_Err DownloadBuffer8(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_Pixel* colour8, PF_LayerDef* output);
    PF_Err DownloadBuffer32(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colourF, PF_LayerDef* output);

    /// Deletes the GL objects. The vectors keep their length, with zeroes; only `initialised` and `width` are reset.
    void CleanUp();

    /// See `WriteReturnMessage`.
    void SendMessage(std::string message, PF_OutData* out_data);
};
