// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Framebuffer's traffic with host worlds: a layer's alpha up into a texture, a buffer down into a world's alpha.

#include "gl/framebuffer.h"
#include "pixel/locked_handle.h"
#include "pixel/world_alpha.h"

using namespace umbrant::effect;

namespace {

constexpr char kOnPingPong[] = "Warning: init PF_World called on pingpong buffer, possible problems";
constexpr char kDownloadTooEarly[] = "Error: tried to download an uninitialised FBO";
constexpr char kDownloadSize[] = "Error: tried to download FBO to CPU buffer of different size";
constexpr char kDownloadDepth[] = "Error: tried to download FBO of unknown bitdepth";

/// A world's depth as GL speaks of it.
struct ChannelFormat {
    GLint internalFormat;
    GLenum type;
    A_HandleSize bytes;
};
constexpr ChannelFormat kBytes = {GL_R8, GL_UNSIGNED_BYTE, 1};
constexpr ChannelFormat kFloats = {GL_R32F, GL_FLOAT, 4};

/// Sets a pixel store row length and resets it to 0 when the scope ends, also by an exception.
class RowLength {
 public:
    RowLength(GLenum name, GLint pixels) : name_(name) { glPixelStorei(name, pixels); }
    ~RowLength() {
        if (!kept_) glPixelStorei(name_, 0);
    }
    RowLength(const RowLength&) = delete;
    RowLength& operator=(const RowLength&) = delete;
    void Keep() { kept_ = true; }

 private:
    GLenum name_;
    bool kept_ = false;
};

/// Binds a texture and leaves none bound when the scope ends.
class BoundTexture {
 public:
    explicit BoundTexture(GLuint texture) { glBindTexture(GL_TEXTURE_2D, texture); }
    ~BoundTexture() { glBindTexture(GL_TEXTURE_2D, 0); }
    BoundTexture(const BoundTexture&) = delete;
    BoundTexture& operator=(const BoundTexture&) = delete;
};

// The bound framebuffer into `buffer`, and from there with the colour into the world.
PF_Err ReadInto8(const Framebuffer& source, void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites,
                 PF_Pixel* colour, PF_LayerDef* output) {
    if (!buffer) return PF_Err_OUT_OF_MEMORY;
    glReadPixels(0, 0, source.width, source.height, GL_RED, GL_UNSIGNED_BYTE, buffer);
    return FillWorld8(buffer, in_data, suites, colour, output);
}

PF_Err ReadInto32(const Framebuffer& source, void* buffer, PF_InData* in_data, AEGP_SuiteHandler& suites,
                  PF_PixelFloat* colour, PF_LayerDef* output) {
    if (!buffer) return PF_Err_OUT_OF_MEMORY;
    glReadPixels(0, 0, source.width, source.height, GL_RED, GL_FLOAT, buffer);
    return FillWorld32(buffer, in_data, suites, colour, output);
}

void* LockOrNull(AEGP_SuiteHandler& suites, PF_Handle handle) {
    return handle ? suites.HandleSuite1()->host_lock_handle(handle) : nullptr;
}

/// Clears a member when the scope ends.
struct ClearedAtEnd {
    PF_Handle& handle;
    ~ClearedAtEnd() { handle = nullptr; }
};

}  // namespace

PF_Err Framebuffer::FBO_Init_PF_World(PF_LayerDef* world, myParams* params, PF_OutData* out_data) {
    width = world->width;
    height = world->height;
    numBuffers = 1;
    if (!FBO_PreInitCheck()) return PF_Err_INTERNAL_STRUCT_DAMAGED;
    // Intended: cannot happen after the line above that sets it, and is kept.
    if (numBuffers >= 2) SendMessage(kOnPingPong, out_data);
    if (params->bitDepth != 8 && params->bitDepth != 32) {
        SendMessage(kDepthRefused, out_data);
        return PF_Err_INTERNAL_STRUCT_DAMAGED;
    }
    const ChannelFormat format = params->bitDepth == 32 ? kFloats : kBytes;

    LockedHandle memory(params->suites->HandleSuite1(), ElementBytes(width, height, format.bytes));
    void* buffer = memory.Lock();
    if (!buffer) return PF_Err_OUT_OF_MEMORY;

    textures.push_back(0);
    glGenTextures(1, &textures[0]);
    PF_Err error = PF_Err_NONE;
    {
        const BoundTexture bound(textures[0]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        const RowLength rowLength(GL_UNPACK_ROW_LENGTH, width);

        glTexImage2D(GL_TEXTURE_2D, 0, format.internalFormat, width, height, 0, GL_RED, format.type, nullptr);
        error = FillFromWorld(buffer, world, params->bitDepth, params->in_data, *params->suites);
        // Intended: uploaded, and this object initialised, also when the iteration reports an error.
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RED, format.type, buffer);
    }
    initialised = true;
    return error;
}

PF_Err Framebuffer::DownloadBuffer(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colourF,
                                   PF_Pixel* colour8, PF_LayerDef* output, PF_OutData* out_data) {
    if (!initialised || fbos.empty() || textures.empty()) {
        SendMessage(kDownloadTooEarly, out_data);
        return PF_Err_NONE;
    }
    if (output->width != width || output->height != height) {
        SendMessage(kDownloadSize, out_data);
        return PF_Err_NONE;
    }

    const A_HandleSize bytes = bitDepth == 8 ? kBytes.bytes : kFloats.bytes;
    LockedHandle memory(suites.HandleSuite1(), ElementBytes(width, height, bytes));
    if (!memory.Get()) return PF_Err_OUT_OF_MEMORY;
    downloadHandle = memory.Get();

    glBindFramebuffer(GL_FRAMEBUFFER, fbos[0]);
    RowLength rowLength(GL_PACK_ROW_LENGTH, output->width);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (bitDepth != 8 && bitDepth != 32) {
        SendMessage(kDownloadDepth, out_data);
        // Kept: the handle stays allocated and the row length set.
        memory.Abandon();
        rowLength.Keep();
        return PF_Err_NONE;
    }

    const ClearedAtEnd cleared{downloadHandle};
    if (bitDepth == 32) return ReadInto32(*this, memory.Lock(), in_data, suites, colourF, output);
    return ReadInto8(*this, memory.Lock(), in_data, suites, colour8, output);
}

PF_Err Framebuffer::DownloadBuffer8(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_Pixel* colour8,
                                    PF_LayerDef* output) {
    return ReadInto8(*this, LockOrNull(suites, downloadHandle), in_data, suites, colour8, output);
}

PF_Err Framebuffer::DownloadBuffer32(PF_InData* in_data, AEGP_SuiteHandler& suites, PF_PixelFloat* colourF,
                                     PF_LayerDef* output) {
    return ReadInto32(*this, LockOrNull(suites, downloadHandle), in_data, suites, colourF, output);
}
