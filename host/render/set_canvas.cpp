// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/render/set_canvas.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "host/compositing/rectangles.h"
#include "host/compositing/resample.h"

namespace umbrant::host {

namespace {

void Unite(std::optional<PF_LRect>& all, const PF_LRect& one) {
    if (!all) {
        all = one;
        return;
    }
    *all = {std::min(all->left, one.left), std::min(all->top, one.top), std::max(all->right, one.right),
            std::max(all->bottom, one.bottom)};
}

/// The full size of an image.
struct ImageSize {
    int width = 0;
    int height = 0;
    auto operator<=>(const ImageSize&) const = default;
};

/// Where the layers of a set come from, as sizes: the header of a file is read, never its pixels.
class LayerSizes {
 public:
    LayerSizes(const FrameSource& source, const Layer* known, const ReadOptions& read) : source_(source), read_(read) {
        if (known) known_ = {known->width, known->height};
    }

    /// The size at a frame: that of the file which shows then, or where it cannot be read of the one before it.
    ImageSize At(int frame) {
        // A still image, and every frame of a clip, has the size of the one that was read.
        if (!source_.pattern || source_.onDisk.empty()) return known_;
        const std::string path = source_.ShownAt(frame);
        if (path == path_) return size_;
        path_ = path;
        if (const auto header = ReadPictureHeader(path, read_)) {
            size_ = {header->frameWidth, header->frameHeight};
        } else if (size_ == ImageSize{}) {
            size_ = known_;
        }
        return size_;
    }

 private:
    const FrameSource& source_;
    const ReadOptions read_;
    ImageSize known_{};
    std::string path_;
    ImageSize size_{};
};

/// The sizes of a frame's layers; the texture's is 0 x 0 without one.
struct FrameSizes {
    ImageSize input{};
    ImageSize texture{};
    auto operator<=>(const FrameSizes&) const = default;
};

/// Layers of any size and without content, since pre-render sees no pixels.
class BlankLayers {
 public:
    BlankLayers(const FramePlan& plan, const FrameLayers& known, int downsample, const ReadOptions& read)
        : hasTexture_(known.texture != nullptr),
          depth_(known.input->pixels.PixelDepth()),
          downsample_(downsample),
          inputs_(plan.input, known.input.get(), read),
          textures_(plan.texture, known.texture.get(), {}) {}

    FrameSizes SizesAt(int frame) { return {inputs_.At(frame), hasTexture_ ? textures_.At(frame) : ImageSize{}}; }

    /// Without a layer when there is no memory for it.
    FrameLayers Of(const FrameSizes& sizes) {
        if (!layers_.input || sizes.input != made_.input) layers_.input = Blank(sizes.input);
        if (hasTexture_ && (!layers_.texture || sizes.texture != made_.texture)) {
            layers_.texture = Blank(sizes.texture);
        }
        made_ = sizes;
        return hasTexture_ && !layers_.texture ? FrameLayers{} : layers_;
    }

 private:
    std::shared_ptr<const Layer> Blank(const ImageSize& size) const {
        auto layer = std::make_shared<Layer>();
        layer->width = size.width;
        layer->height = size.height;
        layer->pixels = World::CreateUnwritten(DownsampledSize(size.width, downsample_),
                                               DownsampledSize(size.height, downsample_), depth_);
        return layer->pixels.IsNull() ? nullptr : layer;
    }

    const bool hasTexture_;
    const Depth depth_;
    const int downsample_;
    LayerSizes inputs_;
    LayerSizes textures_;
    FrameSizes made_{};
    FrameLayers layers_;
};

/// What a frame's image covers when it has a rectangle of its own: the two questions that EffectSession::Render asks.
std::optional<PF_LRect> OwnRectangle(FrameRequest request, EffectSession& session) {
    const auto all = session.PreRender(request);
    if (!all) return std::nullopt;
    request.region = all->maxRect;
    const auto drawn = session.PreRender(request);
    if (!drawn) return std::nullopt;
    // Where nothing is drawn the image is the layer's frame, transparent.
    if (IsEmpty(drawn->resultRect)) return PF_LRect{0, 0, request.layer->Width(), request.layer->Height()};
    return drawn->resultRect;
}

}  // namespace

PF_LRect SetCanvas(const FrameJob& job, const FrameLayers& known, EffectSession& session, const ReadOptions& read) {
    const FramePlan& plan = *job.plan;
    BlankLayers own(plan, known, job.settings.downsample, read);
    BlankLayers other(plan, known, job.settings.downsample, read);
    std::vector<std::pair<const SetFrame*, FrameSizes>> frames;
    bool changes = job.values != nullptr;
    for (const SetFrame& each : plan.wholeSet) {
        const int begun = each.number.Begun();
        if (plan.leavesOutMissing && !(plan.input.Has(begun) && plan.texture.Has(begun))) continue;
        frames.emplace_back(&each, own.SizesAt(begun));
        changes = changes || frames.back().second != frames.front().second;
    }
    std::optional<PF_LRect> all;
    for (const auto& [each, sizes] : frames) {
        const FrameLayers layers = own.Of(sizes);
        if (!layers.input) continue;
        PlannedFrame frame;
        frame.number = each->number;
        frame.time = each->time;
        frame.position = each->number.Value();
        std::optional<ParamSet> values;
        if (job.values) values = job.values(frame.position, session.Params());
        FrameRequest request = RequestFor(job, frame, layers, values ? &*values : nullptr);
        // An effect may look at other times, and what it sees there may decide what it covers.
        std::vector<FrameLayers> keptLayers;
        bool looksAway = false;
        request.layersAt = [&](const Moment& moment) -> Result<MomentLayers> {
            looksAway = true;
            const FrameLayers there = other.Of(other.SizesAt(FrameShownAt(plan, moment)));
            if (!there.input) return Failure{ErrorKind::kInternal, "not enough memory for the layer"};
            keptLayers.push_back(there);
            return WorldsOf(there);
        };
        if (job.values) {
            request.valuesAt = [&](const Moment& moment) {
                return job.values(FrameAt(plan, moment), session.Params());
            };
        }
        if (const auto rectangle = OwnRectangle(std::move(request), session)) Unite(all, *rectangle);
        // All frames are like the first, unless what is seen at other times differs.
        if (!changes && !looksAway) break;
    }
    const World& layer = known.input->pixels;
    return all.value_or(PF_LRect{0, 0, layer.Width(), layer.Height()});
}

}  // namespace umbrant::host
