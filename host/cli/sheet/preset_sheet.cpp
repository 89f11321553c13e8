// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/preset_sheet.h"

#include <memory>
#include <utility>

#include "host/cli/sheet/make_sheet.h"
#include "host/compositing/memory_shortage.h"
#include "host/drawing/new_drawing.h"

namespace umbrant::host {

namespace {

/// The letters: presets are made for layers of about this size, and half of it shows enough.
constexpr int kWidth = 1600;
constexpr int kHeight = 1000;
constexpr int kDownsample = 2;
constexpr double kTypeSize = 370;
constexpr char kLetters[] = "Aa";
constexpr PF_Pixel kColor{255, 255, 122, 69};

Result<std::shared_ptr<const Layer>> Letters() {
    const int width = kWidth / kDownsample;
    const int height = kHeight / kDownsample;
    const auto drawing = TRY(NewDrawing("a layer", width, height, DrawnPixels::kWithAlpha));
    drawing->Clear();
    drawing->SetColor(1, 1, 1);
    drawing->SetFont("Inter Semi Bold", kTypeSize);
    // Capitals are about seven tenths of the size high.
    drawing->DrawText(kLetters, (width - drawing->TextWidth(kLetters)) / 2, height / 2.0 + kTypeSize * 0.36);
    drawing->Flush();
    auto layer = std::make_shared<Layer>();
    layer->pixels = World::Create(width, height, Depth::k8);
    if (layer->pixels.IsNull()) return NotEnoughMemory("the layer");
    layer->width = kWidth;
    layer->height = kHeight;
    for (int y = 0; y < height; ++y) {
        const std::uint32_t* from = drawing->Row(y);
        auto* to = static_cast<PF_Pixel*>(static_cast<void*>(layer->pixels.Row(y)));
        for (int x = 0; x < width; ++x) {
            to[x] = kColor;
            to[x].alpha = static_cast<A_u_char>(from[x] >> 24);
        }
    }
    return std::shared_ptr<const Layer>(std::move(layer));
}

}  // namespace

Result<Done> MakePresetSheet(const std::vector<NamedPreset>& presets, const RenderOptions& render, int cell) {
    if (presets.empty()) {
        return Failure{ErrorKind::kUsage,
                       "there are no presets to draw; write some into the folder of your presets, "
                       "which `umbrant presets --help` shows"};
    }
    SheetRequest request;
    SheetAxis axis{"preset", {}, {}};
    for (const NamedPreset& preset : presets) {
        axis.values.push_back(preset.file.string());
        axis.labels.push_back(preset.isUsers ? preset.name + " (yours)" : preset.name);
    }
    request.axes.push_back(std::move(axis));
    request.job.render = render;
    request.job.cell = cell;
    request.job.showsMiddle = true;
    if (render.input.empty()) {
        request.job.layer = TRY(Letters());
        request.job.render.downsample = kDownsample;
    }
    // Shadows differ too much in length for what is common to all.
    request.job.render.canvas = "layer";
    request.title = "Presets";
    request.settings = "umbrant render INPUT -o OUTPUT --preset NAME";
    return MakeSheet(std::move(request));
}

}  // namespace umbrant::host
