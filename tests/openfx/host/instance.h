// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An instance of an effect: its clips and values, and the actions of its frames.

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tests/openfx/host/image.h"
#include "tests/openfx/host/plugin.h"

namespace umbrant::ofx {

inline constexpr const char* kStraight = "OfxImageAlphaUnPremultiplied";
inline constexpr const char* kPremultiplied = "OfxImageAlphaPremultiplied";
inline constexpr const char* kOpaque = "OfxImageOpaque";

/// What is connected to the clips of an instance.
struct Inputs {
    /// Images at render scale. Their bounds are in pixels.
    Picture source{};
    std::optional<Picture> texture{};
    std::string premultiplication = kStraight;
    /// Of hosts with extensions. Pictures are in this order as they are.
    std::string pixelOrder = "OfxImagePixelOrderRGBA";
    double scaleX = 1;
    double scaleY = 1;
    double pixelAspect = 1;
    /// The source in canonical coordinates, where it is not its bounds divided by the scale.
    std::optional<OfxRectD> sourceRegion{};
};

struct FrameOptions {
    double time = 0;
    bool negativeRows = false;
    int gap = 0;                       ///< bytes between rows
    std::optional<OfxRectI> window{};  ///< the part to render; absent: everything
    int abortAt = 0;                   ///< the call of `abort` that asks to stop; 0: never
    bool sourceMissing = false;        ///< clipGetImage of Source fails
    bool sourceWithoutData = false;    ///< the image of Source has a null pointer
    bool onlyRender = false;           ///< no other action than Render
    std::function<void()> before{};    ///< called right before and after Render
    std::function<void()> after{};
};

struct Frame {
    OfxStatus status = kOfxStatFailed;
    Picture output{};
    int abortCalls = 0;
};

struct Identity {
    OfxStatus status = kOfxStatFailed;
    std::string clip{};
    double time = 0;
};

class Instance {
 public:
    /// Creates an instance in a context; null and the status if the plug-in refuses.
    static std::unique_ptr<Instance> Create(PlugIn& plugIn, const std::string& context, OfxStatus& status);
    /// Destroys the instance.
    ~Instance();
    Instance(const Instance&) = delete;

    EffectObject& Effect() { return *effect_; }
    /// Null if there is no such parameter.
    Param* FindParam(const std::string& name) { return effect_->Params().Find(name); }

    /// Sets a value and sends OfxActionInstanceChanged. Throws std::out_of_range for an unknown name or option.
    void Set(const std::string& name, ParamValue value);
    void Set(const std::string& name, double value) { Set(name, ParamValue{value}); }
    void SetChoice(const std::string& name, const std::string& option);
    /// Sends OfxActionInstanceChanged for a parameter, or a clip.
    OfxStatus Change(const std::string& name, const std::string& reason = "OfxChangeUserEdited", bool clip = false);

    /// Connects the clips, and asks for the clip preferences.
    OfxStatus Connect(Inputs inputs);
    /// The premultiplication of the output that the last Connect was answered.
    const std::string& OutputPremultiplication() const { return premultiplication_; }
    OfxStatus ClipPreferences();

    /// Each may be called on several threads at the same time.
    OfxStatus RegionOfDefinition(double time, OfxRectD& region);
    OfxStatus RegionsOfInterest(double time, const OfxRectD& region, std::map<std::string, OfxRectD>& regions);
    Identity IsIdentity(const FrameOptions& options = {});
    /// Region, Begin, Render, End; checks the memory and the images afterwards.
    Frame Render(const FrameOptions& options = {});

    /// The pixels that a region covers at the scale of the inputs.
    OfxRectI PixelsOf(const OfxRectD& region) const;

 private:
    Instance(PlugIn& plugIn, EffectObject& context);
    void PutArguments(PropertySet& set, double time) const;
    void ConnectClip(Clip& clip, const Picture* picture);
    OfxStatus Sequence(const std::string& action, double time);
    OfxStatus CallRender(const FrameOptions& options, const OfxRectI& window, FrameJob& job);
    void Check(const GuardedImage& output, const GuardedImage* source, const OfxRectI& window, const FrameJob& job,
               OfxStatus status);

    PlugIn& plugIn_;
    Host& host_;
    std::unique_ptr<EffectObject> effect_;
    Inputs inputs_;
    std::string premultiplication_;
    int recursion_ = 0;
    bool created_ = false;
};

}  // namespace umbrant::ofx
