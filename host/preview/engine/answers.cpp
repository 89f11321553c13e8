// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What an engine answers about the effect, its rows and the layer.

#include "host/preview/engine/answers.h"

#include <algorithm>
#include <utility>

#include "host/compositing/memory_shortage.h"
#include "host/compositing/resample.h"
#include "host/image/picture.h"
#include "host/panel/panel_picture.h"
#include "host/panel/panel_rows.h"
#include "host/preview/access.h"
#include "host/preview/engine/preview_engine.h"
#include "host/preview/panel_json.h"
#include "host/process/interruption.h"

namespace umbrant::host {

using Json = nlohmann::ordered_json;

std::string StraightRgba(const World& world) {
    std::string bytes(std::size_t{4} * world.Width() * world.Height(), '\0');
    char* to = bytes.data();
    for (int y = 0; y < world.Height(); ++y) {
        const auto* from = reinterpret_cast<const PF_Pixel*>(world.Row(y));
        for (int x = 0; x < world.Width(); ++x, ++from) {
            for (const A_u_char channel : {from->red, from->green, from->blue, from->alpha}) {
                *to++ = static_cast<char>(channel);
            }
        }
    }
    return bytes;
}

HttpReply JsonReply(const Json& json) {
    return {200, "application/json", Bytes(json)};
}

HttpReply Refused(const Failure& failure) {
    return Refusal(failure.kind == ErrorKind::kUsage ? 422 : 500, failure.sentence);
}

HttpReply PreviewEngine::Describe() const {
    Json json = Json::parse(first_);
    json["effect"] = effect_ ? effect_->name : "";
    json["rows"] = DeclaredRows(defaults_);
    json["renderArguments"] = options_.renderArguments;
    json["isolated"] = effect_ && effect_->session->Remote();
    return JsonReply(json);
}

HttpReply PreviewEngine::Original(const DrawRequest& request) {
    auto layer = layers_.Find(request.layer);
    if (!layer) return Refusal(410, "the image is not kept any more; choose it again");
    if (layer->IsMoving() && !request.frames.empty()) {
        const auto moment = shots_.MomentOf(request, true, options_.shot.textureMoves);
        if (!moment) return Refused(moment.error());
        auto image = shots_.LayerAt(*moment->frame, false);
        if (!image) return Refused(image.error());
        layer = std::move(*image);
    }
    const auto world = layer->At(options_.depth.value_or(layer->OwnDepth()), 1);
    if (!world) return Refused(world.error());
    HttpReply reply{200, "application/octet-stream"};
    if ((*world)->PixelDepth() == Depth::k8) {
        reply.body = StraightRgba(**world);
        return reply;
    }
    const World shown = ConvertDepth(**world, Depth::k8);
    if (shown.IsNull()) return Refused(NotEnoughMemory("the layer"));
    reply.body = StraightRgba(shown);
    return reply;
}

HttpReply PreviewEngine::DrawRow(int index, bool isLight, int scale) {
    if (IsGone()) return Refusal(409, "the module is not running; start it again");
    PanelPictureOptions drawing;
    drawing.theme = isLight ? &kLightTheme : &kDarkTheme;
    drawing.scale = scale;
    drawing.effectName = effect_->name;
    if (auto opened = Twirl(*effect_->session, "all", true); !opened) return Refused(opened.error());
    auto panel = DrawPanel(*effect_->session, drawing);
    if (!panel) return Refused(panel.error());
    const auto item = std::find_if(panel->items.begin(), panel->items.end(), [&](const PanelItem& each) {
        return each.index == index && each.control == PanelControl::kOwn;
    });
    if (item == panel->items.end()) return Refusal(404, "the effect draws no such row");
    const PF_Rect& frame = item->frame;
    const World cut = CutToFrame(panel->pixels, -frame.left * scale, -frame.top * scale,
                                 (frame.right - frame.left) * scale, (frame.bottom - frame.top) * scale);
    if (cut.IsNull()) return Refused(NotEnoughMemory("the row"));
    WriteOptions png;
    png.format = "png";
    auto bytes = EncodePicture(cut, {{0, 0, cut.Width(), cut.Height()}, cut.Width(), cut.Height()}, png);
    return bytes ? HttpReply{200, "image/png", std::move(*bytes)} : Refused(bytes.error());
}

HttpReply PreviewEngine::Press(const DrawRequest& values, const std::string& button) {
    if (IsGone()) return Refusal(409, "the module is not running; start it again");
    if (auto set = SetValues(values, {}); !set) return Refused(set.error());
    const auto index = FindButton(*effect_->session, button);
    if (!index) return Refused(index.error());
    {
        // The effect may start a program that outlives this one, a browser for an address.
        const SignalsOfTheStart signals;
        if (auto pressed = effect_->session->UserChangedParam(*index); !pressed) return Refused(pressed.error());
    }
    return JsonReply({{"values", ChangedValues(effect_->session->Params())}});
}

HttpReply PreviewEngine::Restart() {
    if (IsGone()) {
        if (auto opened = Open(layerWidth_, layerHeight_); !opened) return Refused(opened.error());
    }
    return JsonReply(Json::object());
}

}  // namespace umbrant::host
