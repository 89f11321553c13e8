// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The frames of the small effect, and its errors.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tests/openfx/planted/plugin.h"

namespace umbrant::ofx::planted {

namespace {

struct Image {
    OfxPropertySetHandle set = nullptr;
    std::byte* data = nullptr;
    OfxRectI bounds{};
    int rowBytes = 0;
    int channel = 1;

    std::byte* At(int x, int y) const {
        const std::ptrdiff_t row = Has(Flaw::kIgnoresNegativeRows) ? std::abs(rowBytes) : rowBytes;
        return data + (y - bounds.y1) * row + static_cast<std::ptrdiff_t>(x - bounds.x1) * 4 * channel;
    }
    bool Holds(int x, int y) const { return x >= bounds.x1 && x < bounds.x2 && y >= bounds.y1 && y < bounds.y2; }
};

Image Fetch(OfxImageClipHandle clip, double time) {
    const OfxPropertySuiteV1& property = *suites.property;
    Image image;
    if (suites.effect->clipGetImage(clip, time, nullptr, &image.set) != kOfxStatOK) return {};
    void* data = nullptr;
    char* depth = nullptr;
    const OfxStatus statuses[] = {
        property.propGetPointer(image.set, "OfxImagePropData", 0, &data),
        property.propGetIntN(image.set, "OfxImagePropBounds", 4, &image.bounds.x1),
        property.propGetInt(image.set, "OfxImagePropRowBytes", 0, &image.rowBytes),
        property.propGetString(image.set, "OfxImageEffectPropPixelDepth", 0, &depth),
    };
    for (const OfxStatus status : statuses) {
        if (status == kOfxStatOK) continue;
        suites.effect->clipReleaseImage(image.set);
        return {};
    }
    image.data = static_cast<std::byte*>(data);
    image.channel = std::string(depth) == "OfxBitDepthFloat" ? 4 : 1;
    return image;
}

struct Request {
    double time = 0;
    OfxRectI window{};
    double gain = 1;
};

Request Read(OfxImageEffectHandle effect, OfxPropertySetHandle in) {
    Request request;
    Need(suites.property->propGetDouble(in, "OfxPropTime", 0, &request.time));
    Need(suites.property->propGetIntN(in, "OfxImageEffectPropRenderWindow", 4, &request.window.x1));
    OfxParamHandle gain = ParamOf(effect, "gain");
    Need(Has(Flaw::kIgnoresTime) ? suites.param->paramGetValue(gain, &request.gain)
                                 : suites.param->paramGetValueAtTime(gain, request.time, &request.gain));
    if (Has(Flaw::kSetsInRender)) suites.param->paramSetValue(gain, 1.0);
    return request;
}

void DrawPixel(const Image& output, const Image& source, int x, int y, double gain) {
    const int row = Has(Flaw::kUpsideDown) ? source.bounds.y1 + source.bounds.y2 - 1 - y : y;
    const int column = Has(Flaw::kIgnoresOrigin) ? x + source.bounds.x1 : x;
    std::byte* to = output.At(x, y);
    std::memset(to, 0, static_cast<std::size_t>(4 * output.channel));
    if (!source.Holds(column, row)) return;
    const std::byte* from = source.At(column, row);
    for (int c = 0; c < 4; ++c) {
        if (output.channel == 1) {
            to[c] = static_cast<std::byte>(std::lround(std::to_integer<int>(from[c]) * std::min(gain, 1.0)));
            continue;
        }
        float value = 0;
        std::memcpy(&value, from + 4 * c, 4);
        value *= static_cast<float>(gain);
        std::memcpy(to + 4 * c, &value, 4);
    }
}

void WriteWrongly(const Image& output, const Image& source) {
    const auto bytes = static_cast<std::size_t>(4 * output.channel);
    const OfxRectI& bounds = output.bounds;
    if (Has(Flaw::kWritesGap)) std::memset(output.At(bounds.x2 - 1, bounds.y1) + bytes, 0, 4);
    if (Has(Flaw::kWritesBefore)) std::memset(output.At(bounds.x1, bounds.y1) - 4, 0, 4);
    if (Has(Flaw::kWritesSource)) std::memset(source.At(source.bounds.x1, source.bounds.y1), 1, bytes);
    if (Has(Flaw::kWritesImageProperty)) suites.property->propSetInt(output.set, "OfxImagePropRowBytes", 0, 4);
}

bool Draw(OfxImageEffectHandle effect, const Image& output, const Image& source, const Request& request) {
    OfxRectI area = request.window;
    if (Has(Flaw::kIgnoresWindow)) area = output.bounds;
    for (int y = area.y1; y < area.y2; ++y) {
        if (suites.effect->abort(effect) != 0 && !Has(Flaw::kNeverAborts)) return false;
        for (int x = area.x1; x < area.x2; ++x) {
            if (Has(Flaw::kLeavesPixels) && x == area.x2 - 1) continue;
            DrawPixel(output, source, x, y, request.gain);
        }
    }
    WriteWrongly(output, source);
    return true;
}

}  // namespace

OfxStatus GetRegion(OfxImageEffectHandle effect, OfxPropertySetHandle in, OfxPropertySetHandle out) {
    double time = 0;
    Need(suites.property->propGetDouble(in, "OfxPropTime", 0, &time));
    int border = 0;
    Need(suites.param->paramGetValueAtTime(ParamOf(effect, "border"), time, &border));
    OfxRectD area{};
    Need(suites.effect->clipGetRegionOfDefinition(ClipOf(effect, "Source"), time, &area));
    area = {area.x1 - border, area.y1 - border, area.x2 + border, area.y2 + border};
    if (Has(Flaw::kWrongRegion)) std::swap(area.x1, area.x2);
    if (Has(Flaw::kUnsetRegion)) return kOfxStatOK;
    Need(suites.property->propSetDoubleN(out, "OfxImageEffectPropRegionOfDefinition", 4, &area.x1));
    return kOfxStatOK;
}

OfxStatus IsIdentity(OfxImageEffectHandle effect, OfxPropertySetHandle out) {
    int border = 0;
    Need(suites.param->paramGetValue(ParamOf(effect, "border"), &border));
    if (border != 0 && !Has(Flaw::kClaimsIdentity)) return kOfxStatReplyDefault;
    Need(suites.property->propSetString(out, "OfxPropName", 0, Has(Flaw::kUnknownIdentity) ? "source" : "Source"));
    return kOfxStatOK;
}

OfxStatus Render(OfxImageEffectHandle effect, OfxPropertySetHandle in) {
    if (Has(Flaw::kDefaultsRender)) return kOfxStatReplyDefault;
    Request request = Read(effect, in);
    if (Has(Flaw::kClaimsIdentity)) request.gain = 0.5;
    // Handles first: what fails then leaves no image behind.
    OfxImageClipHandle from = ClipOf(effect, "Source"), to = ClipOf(effect, "Output");
    const Image source = Fetch(from, Has(Flaw::kOtherTime) ? request.time + 1 : request.time);
    const Image output = Fetch(to, request.time);
    bool drawn = false;
    if (output.data != nullptr) drawn = Draw(effect, output, source, request);
    if (source.set != nullptr) suites.effect->clipReleaseImage(source.set);
    if (source.set != nullptr && Has(Flaw::kReleasesTwice)) suites.effect->clipReleaseImage(source.set);
    if (output.set != nullptr && !Has(Flaw::kKeepsImage)) suites.effect->clipReleaseImage(output.set);
    return drawn ? kOfxStatOK : kOfxStatFailed;
}

}  // namespace umbrant::ofx::planted
