// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's rectangles: the layer's, with the border around it, and what of it is asked for.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "tests/modules/judged/judged.h"

namespace {

A_long BorderOf(PF_InData* in) {
    double border = ValueOf(in, JUDGED_BORDER).u.fs_d.value;
    if (Is(Mutant::kLoopsOnHuge)) {
        for (volatile double x = 0; x < border;) x = x + 1;
    }
    if (!(border >= 0)) border = 0;
    if (in->downsample_x.den > 0) border = border * in->downsample_x.num / static_cast<double>(in->downsample_x.den);
    return static_cast<A_long>(std::ceil(std::min(border, 1000.0)));
}

bool IsEmpty(const PF_LRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

PF_LRect Grown(const PF_LRect& rect, A_long by) {
    if (IsEmpty(rect)) return {};
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

void DeleteHanded(void* data) {
    if (Is(Mutant::kLeaksPreRenderData)) return;
    std::free(data);
}

}  // namespace

PF_LRect IntersectionOf(const PF_LRect& a, const PF_LRect& b) {
    const PF_LRect both{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                        std::min(a.bottom, b.bottom)};
    return IsEmpty(both) ? PF_LRect{} : both;
}

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    const A_long border = BorderOf(in);
    PF_Err kept = PF_Err_NONE;
    const auto take = [&](PF_ParamIndex index, A_long id, PF_CheckoutResult* result) {
        const PF_Err error = extra->cb->checkout_layer(in->effect_ref, index, id, &extra->input->output_request,
                                                       in->current_time, in->time_step, in->time_scale, result);
        if (error && Is(Mutant::kGoesOnAfterError)) {
            kept = error;
        } else if (error) {
            throw PF_Err{error};
        }
    };
    PF_CheckoutResult input{};
    PF_CheckoutResult picture{};
    take(JUDGED_INPUT, kInputId, &input);
    take(JUDGED_PICTURE, kPictureId, &picture);
    if (kept) {
        ValueOf(in, JUDGED_ANGLE);
        return kept;
    }

    PF_PreRenderOutput& output = *extra->output;
    const PF_LRect& asked = extra->input->output_request.rect;
    output.max_result_rect = Grown(input.max_result_rect, border);
    output.result_rect = IntersectionOf(asked, output.max_result_rect);
    if (Is(Mutant::kMaxFollowsRequest)) output.max_result_rect = Grown(asked, border);
    if (Is(Mutant::kResultBeyondMax)) {
        output.result_rect = Grown(output.max_result_rect, 3);
        output.flags |= PF_RenderOutputFlag_RETURNS_EXTRA_PIXELS;
    }
    if (Is(Mutant::kClaimsLess) && asked.left > output.max_result_rect.left) {
        output.result_rect.right = std::max(output.result_rect.left, output.result_rect.right - 9);
    }
    const std::size_t size = Is(Mutant::kLeaksPreRenderData) ? 65536 : sizeof(Handed);
    auto* handed = static_cast<Handed*>(std::malloc(size));
    if (!handed && !Is(Mutant::kTrustsMalloc)) return PF_Err_OUT_OF_MEMORY;
    std::memset(static_cast<void*>(handed), 0, size);
    handed->border = border;
    output.pre_render_data = handed;
    output.delete_pre_render_data_func = DeleteHanded;
    return PF_Err_NONE;
}
