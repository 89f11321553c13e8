// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/parameters/parameter_description.h"

#include <algorithm>
#include <iterator>

namespace umbrant::host {

namespace {

struct Description {
    std::string_view path;
    std::string_view text;
};

// In the order of the panel.
constexpr Description kDescriptions[] = {
    {"about-support",
     "Shows the version of the effect and the renderer that draws it. Nothing here changes the picture."},
    {"about-support/umbrant-2-v1-3-3",
     "Opens the page of this product in a browser. The name of the row is the version of the effect."},
    {"about-support/gpu-spec",
     "Opens the page of the support in a browser. The rows below it are the first thing that the support asks for."},
    {"about-support/vendor", "The maker of the renderer that draws the shadow. It cannot be changed."},
    {"about-support/renderer", "The device or the processor path that draws the shadow. It cannot be changed."},
    {"about-support/opengl-version", "The version of OpenGL that the driver offers. It cannot be changed."},
    {"about-support/shader-version",
     "The version of the shading language that the driver offers. It cannot be changed."},

    {"style", "The kind of shadow, where it goes, how long and soft it is, and its colour."},
    {"style/shadow-type",
     "Normal draws a long shadow behind the layer in one direction, and Inner draws one inside the layer's own "
     "shape. Radial draws the shadow away from a point, as a light at that point would."},
    {"style/angle",
     "The direction of a normal or inner shadow in degrees: 0 is up, 90 right, 180 down, 270 left. Full turns can be "
     "added, so that a shadow can rotate several times."},
    {"style/origin",
     "The point from which a radial shadow extends: copies grow away from it. With its default, the top left corner, "
     "the shadow goes down and to the right."},
    {"style/distance",
     "The length of the shadow in pixels of the full-size layer; 0 leaves only the blur. For a radial shadow it is "
     "how much larger the last copy is than the layer, in percent: 100 doubles the size."},
    {"style/softness",
     "The blur at the end of the shadow, in pixels of the full-size layer. The shadow is sharp where it begins and "
     "becomes softer along its length; 0 keeps it sharp to the end."},
    {"style/color", "The colour of the shadow. A texture, if there is one, is combined with this colour."},
    {"style/blend-mode",
     "How an inner shadow is combined with the colours of the layer: Multiply darkens, Screen and Add make it glow. "
     "The other types do not use it, because their shadow is behind the layer."},

    {"opacity", "How much each copy covers where the shadow begins and where it ends, and the strength of the whole."},
    {"opacity/opacity-start",
     "The opacity of the first of the copies that form the shadow, in percent. Copies overlap, so a few percent "
     "already make a dense shadow."},
    {"opacity/opacity-end", "The opacity of the last copy, in percent. With 0 the shadow fades out along its length."},
    {"opacity/opacity-master",
     "The strength of the whole shadow, in percent; 0 draws no shadow. Use it to fade a shadow in or out."},

    {"easing", "How the copies are distributed along the shadow."},
    {"easing/mode",
     "Ease In keeps most copies near the layer and moves the last ones away quickly. Ease In & Out keeps copies near "
     "both ends."},
    {"easing/ease",
     "The strength of the curve, in percent. With 0 distance, softness and opacity change evenly along the shadow."},
    {"easing/advanced", "The strength of the curve for distance, softness and opacity separately."},
    {"easing/advanced/easing-per-attribute", "A heading for the three rows below it. It has no value."},
    {"easing/advanced/distance",
     "How much of the curve the positions of the copies follow, in percent of Ease. 0 spaces the copies evenly; less "
     "than 100 avoids that they gather near the layer."},
    {"easing/advanced/softness",
     "How much of the curve the blur follows, in percent of Ease. 0 makes the shadow softer evenly along its length, "
     "100 keeps it sharp for longer."},
    {"easing/advanced/opacity",
     "How much of the curve the opacity follows, in percent of Ease. 0 changes it evenly from the start to the end, "
     "100 keeps the opacity of the start for longer."},

    {"texture", "An image that colours the shadow."},
    {"texture/layer",
     "The image that colours the shadow, placed at its own position and not scaled. It changes colours only, never "
     "how much the shadow covers."},
    {"texture/blend-mode",
     "How the texture is combined with the colour of the shadow: Normal replaces the colour, the others mix the two. "
     "The stencil and silhouette modes act on opacity alone, which a texture never changes, so they leave the shadow "
     "as it is; the default is one of them."},
    {"texture/strength", "How much of the texture is used, in percent. With 0 the shadow has its own colour only."},

    {"quality", "How many copies form the shadow, and how exactly they are blurred."},
    {"quality/samples",
     "The number of blurred copies that form the shadow. More copies make a long or sharp shadow smoother and "
     "denser, and take longer to draw; few copies show as steps."},
    {"quality/resolution",
     "The size at which copies are blurred: Draft blurs at a fifth of the layer's size, Extreme at the full size. "
     "Higher settings keep fine details of the shape and take longer."},
    {"quality/prioritise",
     "Whether time or memory is saved. It is stored with the project and has no effect in this version: neither the "
     "picture nor the time changes."},

    {"compositing", "The layer above its shadow, and the space around the two."},
    {"compositing/source-opacity",
     "The opacity of the layer itself above its shadow, in percent; 0 leaves the shadow alone. An inner shadow "
     "always has the layer at full opacity."},
    {"compositing/offset-shadow",
     "The distance between the layer and the place where a normal or inner shadow begins, in pixels of the full-size "
     "layer. The whole shadow moves away along its angle, so that the layer seems to float; a radial shadow ignores "
     "it."},
    {"compositing/buffer-expansion",
     "Extra space around the result, in pixels of the full-size layer, half of it on each side. Raise it where the "
     "edge of the picture cuts off a very soft shadow; it takes more memory."},

    {"debug", "Rows for the development of the effect. They are stored with the project, and the panel hides them."},
    {"debug/left", "For development: a distance at the left edge. It is stored and does not change the picture."},
    {"debug/top", "For development: a distance at the top edge. It is stored and does not change the picture."},
    {"debug/right", "For development: a distance at the right edge. It is stored and does not change the picture."},
    {"debug/bottom", "For development: a distance at the bottom edge. It is stored and does not change the picture."},
    {"debug/buffer-opacity", "For development: an opacity. It is stored and does not change the picture."},
    {"debug/counter", "For development: a number. It is disabled and does not change the picture."},
};

}  // namespace

std::string_view DescriptionOf(std::string_view path) {
    const auto* found = std::find_if(std::begin(kDescriptions), std::end(kDescriptions),
                                     [&](const Description& each) { return each.path == path; });
    return found == std::end(kDescriptions) ? std::string_view() : found->text;
}

}  // namespace umbrant::host
