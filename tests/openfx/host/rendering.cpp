// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The actions of a frame, and what must be true of its memory afterwards.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "tests/openfx/host/instance.h"

namespace umbrant::ofx {

namespace {

std::vector<PropertyValue> Four(const OfxRectD& area) {
    return {area.x1, area.y1, area.x2, area.y2};
}
std::vector<PropertyValue> Four(const OfxRectI& area) {
    return {area.x1, area.y1, area.x2, area.y2};
}

OfxRectD RectangleOf(const PropertySet& set, const std::string& name) {
    return {set.Double(name, 0), set.Double(name, 1), set.Double(name, 2), set.Double(name, 3)};
}

bool Valid(const OfxRectD& area) {
    const bool finite =
        std::isfinite(area.x1) && std::isfinite(area.y1) && std::isfinite(area.x2) && std::isfinite(area.y2);
    // Longer sides than any test has would take all memory.
    constexpr double kLongest = 20000;
    return finite && area.x1 <= area.x2 && area.y1 <= area.y2 && area.x2 - area.x1 <= kLongest &&
           area.y2 - area.y1 <= kLongest;
}

}  // namespace

OfxRectI Instance::PixelsOf(const OfxRectD& region) const {
    const double x = inputs_.scaleX / inputs_.pixelAspect, y = inputs_.scaleY;
    return {static_cast<int>(std::floor(region.x1 * x)), static_cast<int>(std::floor(region.y1 * y)),
            static_cast<int>(std::ceil(region.x2 * x)), static_cast<int>(std::ceil(region.y2 * y))};
}

OfxStatus Instance::RegionOfDefinition(double time, OfxRectD& region) {
    const std::string action = "OfxImageEffectActionGetRegionOfDefinition";
    const Clip* source = effect_->FindClip("Source");
    region = source != nullptr ? source->region : OfxRectD{};
    PropertySet in(host_, {"the arguments of " + action, {"inArgs"}});
    PutArguments(in, time);
    PropertySet out(host_, {"the results of " + action, {"outArgs"}, Access::kWritable});
    // Hosts preset this differently; an effect must set all four.
    out.Put("OfxImageEffectPropRegionOfDefinition", {0.0, 0.0, 0.0, 0.0});
    const OfxStatus status = plugIn_.Call(action, effect_.get(), &in, &out);
    if (status != kOfxStatOK) return status;
    if (!host_.record.HasFaults() && out.Has("OfxImageEffectPropRegionOfDefinition") &&
        !out.WasSet("OfxImageEffectPropRegionOfDefinition")) {
        host_.record.Violation(action + " answered OK and did not set its result");
        return status;
    }
    region = RectangleOf(out, "OfxImageEffectPropRegionOfDefinition");
    if (Valid(region)) return status;
    host_.record.Violation(action + ": the rectangle is not in order");
    return kOfxStatFailed;
}

OfxStatus Instance::RegionsOfInterest(double time, const OfxRectD& region, std::map<std::string, OfxRectD>& regions) {
    const std::string action = "OfxImageEffectActionGetRegionsOfInterest";
    PropertySet in(host_, {"the arguments of " + action, {"inArgs"}});
    PutArguments(in, time);
    in.Put("OfxImageEffectPropRegionOfInterest", Four(region));
    PropertySet out(host_, {"the results of " + action, {"outArgs"}, Access::kWritable});
    for (const auto& clip : effect_->Clips()) {
        if (clip->Name() != "Output") out.Put("OfxImageClipPropRoI_" + clip->Name(), Four(region));
    }
    const OfxStatus status = plugIn_.Call(action, effect_.get(), &in, &out);
    for (const auto& clip : effect_->Clips()) {
        if (clip->Name() == "Output") continue;
        regions[clip->Name()] = RectangleOf(out, "OfxImageClipPropRoI_" + clip->Name());
        if (!Valid(regions[clip->Name()])) host_.record.Violation(action + ": the rectangle is not in order");
    }
    return status;
}

Identity Instance::IsIdentity(const FrameOptions& options) {
    const std::string action = "OfxImageEffectActionIsIdentity";
    PropertySet in(host_, {"the arguments of " + action, {"inArgs"}});
    PutArguments(in, options.time);
    in.Put("OfxImageEffectPropFieldToRender", {"OfxFieldNone"});
    in.Put("OfxImageEffectPropRenderWindow", Four(options.window.value_or(inputs_.source.bounds)));
    PropertySet out(host_, {"the results of " + action, {"outArgs"}, Access::kWritable});
    out.Put("OfxPropName", {""});
    out.Put("OfxPropTime", {options.time});
    Identity identity;
    identity.status = plugIn_.Call(action, effect_.get(), &in, &out);
    identity.clip = out.String("OfxPropName");
    identity.time = out.Double("OfxPropTime");
    if (identity.status == kOfxStatOK && effect_->FindClip(identity.clip) == nullptr) {
        host_.record.Violation(action + ": there is no clip '" + identity.clip + "'");
    }
    return identity;
}

OfxStatus Instance::Sequence(const std::string& action, double time) {
    PropertySet in(host_, {"the arguments of " + action, {"inArgs"}});
    in.Put("OfxImageEffectPropFrameRange", {time, time});
    in.Put("OfxImageEffectPropFrameStep", {1.0});
    in.Put("OfxPropIsInteractive", {0});
    in.Put("OfxImageEffectPropRenderScale", {inputs_.scaleX, inputs_.scaleY});
    in.Put("OfxImageEffectPropSequentialRenderStatus", {0});
    in.Put("OfxImageEffectPropInteractiveRenderStatus", {0});
    return plugIn_.Call(action, effect_.get(), &in, nullptr);
}

OfxStatus Instance::CallRender(const FrameOptions& options, const OfxRectI& window, FrameJob& job) {
    PropertySet in(host_, {"the arguments of OfxImageEffectActionRender", {"inArgs"}});
    PutArguments(in, options.time);
    in.Put("OfxImageEffectPropFieldToRender", {"OfxFieldNone"});
    in.Put("OfxImageEffectPropRenderWindow", Four(window));
    in.Put("OfxImageEffectPropSequentialRenderStatus", {0});
    in.Put("OfxImageEffectPropInteractiveRenderStatus", {0});
    in.Put("OfxImageEffectPropRenderQualityDraft", {0});
    if (options.before) options.before();
    const OfxStatus status = plugIn_.Call("OfxImageEffectActionRender", effect_.get(), &in, nullptr, &job);
    if (options.after) options.after();
    return status;
}

Frame Instance::Render(const FrameOptions& options) {
    Frame frame;
    OfxRectD region{0, 0, host_.Options().projectWidth, host_.Options().projectHeight};
    if (host_.Options().multiResolution) {
        const OfxStatus status = RegionOfDefinition(options.time, region);
        if (!Succeeded(status)) {
            frame.status = status;
            return frame;
        }
    }
    const Layout layout{PixelsOf(region), inputs_.source.depth, options.negativeRows, options.gap};
    const OfxRectI window = options.window.value_or(layout.bounds);
    GuardedImage output(layout);
    Layout sourceLayout = layout;
    sourceLayout.bounds = inputs_.source.bounds;
    GuardedImage source(sourceLayout);
    source.Write(inputs_.source);
    sourceLayout.bounds = inputs_.texture ? inputs_.texture->bounds : OfxRectI{};
    GuardedImage texture(sourceLayout);
    if (inputs_.texture) texture.Write(*inputs_.texture);

    FrameJob job(options.time, inputs_.scaleX, inputs_.scaleY, inputs_.pixelAspect);
    job.abortAt = options.abortAt;
    job.Add({effect_->FindClip("Output"), &output, premultiplication_});
    const bool noSource = options.sourceMissing || options.sourceWithoutData;
    job.Add({effect_->FindClip("Source"), noSource ? nullptr : &source, inputs_.premultiplication,
             options.sourceWithoutData});
    if (inputs_.texture) job.Add({effect_->FindClip("Texture"), &texture, inputs_.premultiplication});
    effect_->Begin(job);
    OfxStatus begun = kOfxStatOK;
    if (!options.onlyRender) begun = Sequence("OfxImageEffectActionBeginSequenceRender", options.time);
    frame.status = Succeeded(begun) ? CallRender(options, window, job) : begun;
    if (!options.onlyRender) Sequence("OfxImageEffectActionEndSequenceRender", options.time);
    effect_->End(job);
    Check(output, &source, window, job, frame.status);
    if (inputs_.texture && !texture.GuardsIntact()) host_.record.Violation("the render wrote beside the texture");
    frame.output = output.Read();
    frame.abortCalls = job.abortCalls;
    return frame;
}

void Instance::Check(const GuardedImage& output, const GuardedImage* source, const OfxRectI& window,
                     const FrameJob& job, OfxStatus status) {
    Record& record = host_.record;
    for (const std::string& name : job.Held()) {
        record.Violation("OfxImageEffectActionRender: the image of clip " + name + " is not released");
    }
    if (!output.GuardsIntact()) record.Violation("the render wrote outside of the rows of its output");
    const Picture after = source->Read();
    const bool changed =
        std::memcmp(after.channels.data(), inputs_.source.channels.data(), after.channels.size() * sizeof(float)) != 0;
    if (changed || !source->GuardsIntact()) record.Violation("the render wrote to its source");
    const OfxRectI& bounds = output.TheLayout().bounds;
    for (int y = bounds.y1; y < bounds.y2; ++y) {
        for (int x = bounds.x1; x < bounds.x2; ++x) {
            const bool inside = Contains(window, x, y);
            if (!inside && output.Written(x, y)) {
                record.Violation("the render wrote pixels outside of its window");
                return;
            }
            if (inside && status == kOfxStatOK && !output.Written(x, y)) {
                record.Violation("the render did not write every pixel of its window");
                return;
            }
        }
    }
}

}  // namespace umbrant::ofx
