// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/pf/iterate.h"

#include <cstdint>
#include <numeric>

namespace umbrant::host {

namespace {

RowOrder rowOrder = RowOrder::kNeighbours;

/// A number that shares no divisor with `count`, far from 1: its multiples meet every index once.
int Stride(int count) {
    int stride = std::max(1, count / 2 + count / 8);
    while (std::gcd(stride, count) != 1) ++stride;
    return stride;
}

}  // namespace

void SetRowOrder(RowOrder order) {
    rowOrder = order;
}

PF_Err RunForEffect(int count, const std::function<PF_Err(int index, int thread)>& work) {
    const auto caller = ServiceScope::Current();
    std::atomic<PF_Err> first{PF_Err_NONE};
    const auto fail = [&](PF_Err error) {
        PF_Err none = PF_Err_NONE;
        first.compare_exchange_strong(none, error);
        return false;
    };
    const std::int64_t stride = rowOrder == RowOrder::kScattered && count > 2 ? Stride(count) : 1;
    RunRows(count, [&](int place, int thread) {
        const int index = stride == 1 ? place : static_cast<int>(place * stride % count);
        const ServiceScope scope(caller.first, caller.second);
        try {
            const PF_Err error = work(index, thread);
            return error ? fail(error) : true;
        } catch (...) {
            Report("a pixel function of the effect threw an exception");
            return fail(PF_Err_INTERNAL_STRUCT_DAMAGED);
        }
    });
    return first;
}

PF_Err IterateGeneric(A_long iterations, void* refcon,
                      PF_Err (*function)(void* refcon, A_long threadIndex, A_long i, A_long iterations)) {
    if (!function) return PF_Err_BAD_CALLBACK_PARAM;
    const A_long count = iterations == PF_Iterations_ONCE_PER_PROCESSOR ? RowThreads() : iterations;
    if (count < 0) return PF_Err_BAD_CALLBACK_PARAM;
    return RunForEffect(count, [&](int index, int thread) { return function(refcon, thread, index, count); });
}

PF_Err IterateLut(const PF_EffectWorld* source, const PF_Rect* area, const A_u_char* alpha, const A_u_char* red,
                  const A_u_char* green, const A_u_char* blue, const PF_EffectWorld* destination) {
    struct Tables {
        const A_u_char *alpha, *red, *green, *blue;
    } tables{alpha, red, green, blue};
    const auto look = [](void* refcon, A_long, A_long, PF_Pixel* in, PF_Pixel* out) {
        const auto& t = *static_cast<const Tables*>(refcon);
        const auto value = [](const A_u_char* table, A_u_char channel) { return table ? table[channel] : channel; };
        *out = {value(t.alpha, in->alpha), value(t.red, in->red), value(t.green, in->green), value(t.blue, in->blue)};
        return PF_Err_NONE;
    };
    return IteratePixels<PF_Pixel>(source, area, nullptr, Outside::kSkipped, &tables, look, destination);
}

PF_Err IterateLutCall(PF_InData*, A_long, A_long, PF_EffectWorld* source, const PF_Rect* area, A_u_char* alpha,
                      A_u_char* red, A_u_char* green, A_u_char* blue, PF_EffectWorld* destination) {
    return IterateLut(source, area, alpha, red, green, blue, destination);
}

}  // namespace umbrant::host
