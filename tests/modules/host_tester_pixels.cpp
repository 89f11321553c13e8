// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host tester's questions about pixels: each pixel of a walk once, every transfer mode by its formula.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "tests/host/compositing/transfer_model.h"
#include "tests/modules/host_tester.h"

using namespace umbrant::host;

namespace {

constexpr A_long kWide = 37, kHigh = 23;

/// How often each pixel was visited, and whether it was the right one.
template <typename Pixel>
struct Visits {
    const PF_EffectWorld* source;
    const PF_EffectWorld* target;
    PF_Point origin{};
    std::vector<std::atomic<int>> counts = std::vector<std::atomic<int>>(kWide * kHigh);
    std::atomic<bool> wrong{false};

    static PF_Err Visit(void* refcon, A_long x, A_long y, Pixel* in, Pixel* out) {
        auto& visits = *static_cast<Visits*>(refcon);
        if (x < 0 || y < 0 || x >= kWide || y >= kHigh) {
            visits.wrong = true;
            return PF_Err_NONE;
        }
        ++visits.counts[static_cast<std::size_t>(y * kWide + x)];
        if (out != RowOf<Pixel>(*visits.target, y) + x) visits.wrong = true;
        const A_long sx = x - visits.origin.x, sy = y - visits.origin.y;
        const bool covered = sx >= 0 && sy >= 0 && sx < kWide && sy < kHigh;
        if (covered && in != RowOf<Pixel>(*visits.source, sy) + sx) visits.wrong = true;
        return PF_Err_NONE;
    }
    /// Every pixel of the rectangle once, no other.
    bool Exactly(const PF_Rect& area) const {
        for (A_long y = 0; y < kHigh; ++y) {
            for (A_long x = 0; x < kWide; ++x) {
                const bool inside = x >= area.left && x < area.right && y >= area.top && y < area.bottom;
                if (counts[static_cast<std::size_t>(y * kWide + x)] != (inside ? 1 : 0)) return false;
            }
        }
        return !wrong;
    }
};

template <typename Suite, typename Pixel>
void TestIterate(PF_InData* in, const char* name, int32_t version, PF_PixelFormat format) {
    const Held<Suite> iterate(in, name, version);
    Made<Pixel> source(in, format, kWide, kHigh), target(in, format, kWide, kHigh);
    const std::string of = std::string(" of ") + name;
    {
        Visits<Pixel> visits{&source.world, &target.world};
        Expect(!iterate->iterate(in, 0, 1, &source.world, nullptr, &visits, Visits<Pixel>::Visit, &target.world) &&
                   visits.Exactly({0, 0, kWide, kHigh}),
               "iterate" + of + " visits every pixel once");
    }
    {
        const PF_Rect area{5, 3, 20, 17};
        Visits<Pixel> visits{&source.world, &target.world};
        Expect(!iterate->iterate(in, 0, 1, &source.world, &area, &visits, Visits<Pixel>::Visit, &target.world) &&
                   visits.Exactly(area),
               "iterate" + of + " visits every pixel of the area once");
    }
    {
        const PF_Point origin{{4}, {-2}};
        Visits<Pixel> visits{&source.world, &target.world, origin};
        Expect(!iterate->iterate_origin(in, 0, 1, &source.world, nullptr, &origin, &visits, Visits<Pixel>::Visit,
                                        &target.world) &&
                   visits.Exactly({4, 0, kWide, kHigh - 2}),
               "iterate_origin" + of + " visits where both worlds have pixels");
    }
    const auto refuse = [](void*, A_long, A_long y, Pixel*, Pixel*) { return y == 7 ? PF_Err{4321} : PF_Err_NONE; };
    Expect(iterate->iterate(in, 0, 1, &source.world, nullptr, nullptr, refuse, &target.world) == 4321,
           "iterate" + of + " hands back the pixel function's error");
}

void TestIterateGeneric(PF_InData* in) {
    const Held<PF_Iterate8Suite1> iterate(in, kPFIterate8SuiteName, kPFIterate8SuiteVersion1);
    struct Calls {
        std::atomic<int> counts[50] = {};
    } calls;
    const auto call = [](void* refcon, A_long, A_long i, A_long) {
        ++static_cast<Calls*>(refcon)->counts[i];
        return PF_Err_NONE;
    };
    Expect(!iterate->iterate_generic(50, &calls, call) &&
               std::all_of(std::begin(calls.counts), std::end(calls.counts), [](const auto& n) { return n == 1; }),
           "iterate_generic calls once for every number");
}

model::Pixel ExactOf(const PF_Pixel& p) {
    return {p.alpha / 255.0, {{p.red / 255.0, p.green / 255.0, p.blue / 255.0}}};
}
model::Pixel ExactOf(const PF_PixelFloat& p) {
    return {p.alpha, {{p.red, p.green, p.blue}}};
}
void Store(PF_Pixel& p, const double (&c)[4]) {
    const auto byte = [](double value) { return static_cast<A_u_char>(std::lround(value * 255)); };
    p = {byte(c[0]), byte(c[1]), byte(c[2]), byte(c[3])};
}
void Store(PF_PixelFloat& p, const double (&c)[4]) {
    p = {static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2]), static_cast<float>(c[3])};
}

template <typename Pixel>
void TestTransfers(PF_InData* in, PF_PixelFormat format, double tolerance) {
    const Held<PF_WorldTransformSuite1> transform(in, kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1);
    constexpr A_long kSide = 9;
    Made<Pixel> source(in, format, kSide, kSide), target(in, format, kSide, kSide), before(in, format, kSide, kSide);
    for (A_long i = 0; i < kSide * kSide; ++i) {
        const double s[4] = {(i % 9) / 8.0, (i * 5 % 11) / 10.0, (i * 7 % 13) / 12.0, (i * 3 % 7) / 6.0};
        const double d[4] = {(i / 9) / 8.0, (i * 4 % 9) / 8.0, (i * 11 % 10) / 9.0, (i * 2 % 5) / 4.0};
        Store(*source.At(i % kSide, i / kSide), s);
        Store(*before.At(i % kSide, i / kSide), d);
    }
    for (PF_TransferMode mode = PF_Xfer_COPY; mode < PF_Xfer_RESERVED0; ++mode) {
        if (mode == PF_Xfer_DISSOLVE) continue;  // which pixels it takes is the host's choice
        for (const bool rgbOnly : {false, true}) {
            for (A_long y = 0; y < kSide; ++y) std::copy_n(before.At(0, y), kSide, target.At(0, y));
            const PF_CompositeMode composite{mode, 0, 200, rgbOnly, static_cast<A_u_short>(200 * 32768 / 255)};
            const PF_Err error =
                transform->transfer_rect(in->effect_ref, PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr,
                                         &source.world, &composite, nullptr, 0, 0, &target.world);
            double worst = error ? 1 : 0;
            for (A_long y = 0; y < kSide; ++y) {
                for (A_long x = 0; x < kSide; ++x) {
                    const model::Pixel wanted = model::Composite(mode, rgbOnly, ExactOf(*source.At(x, y)),
                                                                 ExactOf(*before.At(x, y)), 200 / 255.0, 1);
                    const model::Pixel got = ExactOf(*target.At(x, y));
                    worst = std::max(worst, std::abs(got.alpha - std::clamp(wanted.alpha, 0.0, 1.0)));
                    // The colour of what cannot be seen is nobody's business.
                    if (wanted.alpha < 0.01) continue;
                    for (int c = 0; c < 3; ++c) {
                        const double exact = tolerance > 1e-3 ? std::clamp(wanted.rgb.c[c], 0.0, 1.0) : wanted.rgb.c[c];
                        worst = std::max(worst, std::abs(got.rgb.c[c] - exact) / std::max(1.0, std::abs(exact)));
                    }
                }
            }
            Expect(worst <= tolerance, "transfer mode " + std::to_string(mode) + (rgbOnly ? ", colours only," : "") +
                                           " follows its formula (it is off by " + std::to_string(worst) + ")");
        }
    }
    const PF_CompositeMode unknown{PF_Xfer_NUM_MODES + 3, 0, 255, 0, PF_MAX_CHAN16};
    Expect(transform->transfer_rect(in->effect_ref, PF_Quality_HI, PF_MF_Alpha_STRAIGHT, PF_Field_FRAME, nullptr,
                                    &source.world, &unknown, nullptr, 0, 0, &target.world) != 0,
           "an unknown transfer mode is refused");
}

void TestUtilities(PF_InData* in) {
    Made<PF_Pixel> world(in, PF_PixelFormat_ARGB32, 12, 8), other(in, PF_PixelFormat_ARGB32, 12, 8);
    const PF_Pixel colour{255, 1, 2, 3};
    const PF_Rect part{2, 1, 9, 6};
    Expect(!in->utils->fill(in->effect_ref, &colour, &part, &world.world), "fill answers");
    bool right = true;
    for (A_long y = 0; y < 8; ++y) {
        for (A_long x = 0; x < 12; ++x) {
            const bool inside = x >= part.left && x < part.right && y >= part.top && y < part.bottom;
            right &= world.At(x, y)->blue == (inside ? 3 : 0);
        }
    }
    Expect(right, "fill fills its rectangle and nothing else");
    PF_Rect from{2, 1, 4, 3}, to{0, 0, 2, 2};
    Expect(!in->utils->copy(in->effect_ref, &world.world, &other.world, &from, &to) && other.At(1, 1)->blue == 3 &&
               other.At(2, 2)->blue == 0,
           "copy copies a rectangle to its place");
    const Held<PF_ANSICallbacksSuite1> ansi(in, kPFANSISuiteName, kPFANSISuiteVersion1);
    char text[32];
    Expect(ansi->sprintf(text, "%s %d", "a", 7) == 3 && std::strcmp(text, "a 7") == 0, "sprintf formats and counts");
    for (const double x : {-2.0, 0.0, 0.5, 3.0}) {
        Expect(ansi->sin(x) == std::sin(x) && ansi->cos(x) == std::cos(x), "sine and cosine are the C library's");
    }
}

}  // namespace

void TestPixelServices(PF_InData* in) {
    TestIterate<PF_Iterate8Suite1, PF_Pixel>(in, kPFIterate8SuiteName, kPFIterate8SuiteVersion1, PF_PixelFormat_ARGB32);
    TestIterate<PF_iterate16Suite1, PF_Pixel16>(in, kPFIterate16SuiteName, kPFIterate16SuiteVersion1,
                                                PF_PixelFormat_ARGB64);
    TestIterate<PF_iterateFloatSuite1, PF_PixelFloat>(in, kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1,
                                                      PF_PixelFormat_ARGB128);
    TestIterateGeneric(in);
    TestTransfers<PF_Pixel>(in, PF_PixelFormat_ARGB32, 0.6 / 255);
    TestTransfers<PF_PixelFloat>(in, PF_PixelFormat_ARGB128, 1e-4);
    TestUtilities(in);
}
