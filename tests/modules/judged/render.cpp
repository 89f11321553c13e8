// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The effect's picture: the layer with some of its alpha taken away, tinted, or with a picture in front of it; a border
// of nothing around it.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "tests/modules/judged/judged.h"

namespace {

int frames = 0;
float lastAmount = 0;
volatile int sharedScratch = 0;

/// The layers of one render; checked in at the end of the scope.
class Layers {
 public:
    Layers(PF_InData* in, PF_SmartRenderExtra* extra) : in_(in), extra_(extra) {}
    ~Layers() {
        if (Is(Mutant::kKeepsLayer)) return;
        for (int i = count_ - 1; i >= 0; --i) extra_->cb->checkin_layer_pixels(in_->effect_ref, ids_[i]);
    }
    Layers(const Layers&) = delete;
    Layers& operator=(const Layers&) = delete;

    PF_EffectWorld* Take(A_long id) {
        PF_EffectWorld* world = nullptr;
        if (const PF_Err error = extra_->cb->checkout_layer_pixels(in_->effect_ref, id, &world)) throw PF_Err{error};
        ids_[count_++] = id;
        return world;
    }

 private:
    PF_InData* in_;
    PF_SmartRenderExtra* extra_;
    A_long ids_[3] = {};
    int count_ = 0;
};

/// A world of the output's size; disposed of at the end of the scope.
class Temporary {
 public:
    Temporary(PF_InData* in, const PF_EffectWorld& like)
        : in_(in), suite_(in, kPFWorldSuiteName, kPFWorldSuiteVersion2) {
        PF_PixelFormat format = 0;
        if (const PF_Err error = suite_->PF_GetPixelFormat(&like, &format)) throw PF_Err{error};
        if (const PF_Err error = suite_->PF_NewWorld(in->effect_ref, like.width, like.height, 1, format, &world)) {
            throw PF_Err{error};
        }
    }
    ~Temporary() {
        if (!Is(Mutant::kLeaksWorld) && !abandoned) suite_->PF_DisposeWorld(in_->effect_ref, &world);
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    PF_EffectWorld world{};
    bool abandoned = false;

 private:
    PF_InData* in_;
    Held<PF_WorldSuite2> suite_;
};

template <typename Pixel>
Pixel* RowOf(const PF_EffectWorld& world, A_long y) {
    const std::ptrdiff_t bytes = Is(Mutant::kAssumesTightRows) ? std::ptrdiff_t{world.width} * A_long{sizeof(Pixel)}
                                                               : std::ptrdiff_t{world.rowbytes};
    return reinterpret_cast<Pixel*>(reinterpret_cast<char*>(world.data) + bytes * y);
}

/// What one frame is drawn with.
struct Look {
    float amount;  ///< 0 to 1
    A_long mode, steps;
    PF_Pixel colour;
};

template <typename Pixel>
using Channel = decltype(Pixel::alpha);

template <typename Pixel>
Channel<Pixel> Scaled(Channel<Pixel> value, float by) {
    if constexpr (std::is_floating_point_v<Channel<Pixel>>) {
        return value * by;
    } else {
        return static_cast<Channel<Pixel>>(static_cast<float>(value) * by);
    }
}

/// Takes time in proportion to the steps on every processor: each iteration depends on the previous one, also across
/// calls, and needs no memory. Returns the number for the next call.
std::uint64_t Worked(std::uint64_t state, A_long steps) {
    const A_long rounds = Is(Mutant::kSlowsDown) ? steps * steps : steps;
    for (A_long i = 0; i < rounds * 4; ++i) state = state * 6364136223846793005u + 1442695040888963407u;
    return state;
}

/// The steps of a frame. The unsteady effect takes 32 times as many every other time that it is asked for 32.
A_long PacedSteps(A_long steps) {
    if (Is(Mutant::kWaits) && steps >= 16) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    static A_long last = 0, changes = 0;
    if (!Is(Mutant::kUnsteady)) return steps;
    if (steps != last && steps == 32) ++changes;
    last = steps;
    return steps == 32 && changes % 2 == 1 ? steps * 32 : steps;
}

/// The faults that show in single pixels.
template <typename Pixel>
void Spoil(const PF_EffectWorld& output, const Look& look, PF_InData* in) {
    Pixel* first = RowOf<Pixel>(output, 0);
    if (Is(Mutant::kWritesPadding)) RowOf<Pixel>(output, 0)[output.width] = {};
    if (Is(Mutant::kWritesRowTooFar)) RowOf<Pixel>(output, output.height)[0] = {};
    if (Is(Mutant::kWritesBefore)) RowOf<Pixel>(output, -1)[0] = {};
    if (Is(Mutant::kTrustsExtentHint)) RowOf<Pixel>(output, output.extent_hint.bottom - 1)[0] = *first;
    if (Is(Mutant::kDrawsChance)) first->red = static_cast<Channel<Pixel>>(std::random_device()() % 200);
    if (Is(Mutant::kDrawsTime)) first->red = static_cast<Channel<Pixel>>(in->current_time % 100);
    if (Is(Mutant::kRemembersFrame)) first->red = static_cast<Channel<Pixel>>(lastAmount * 100);
    if (Is(Mutant::kTilesDiffer)) {
        for (A_long y = 0; y < output.height; ++y) {
            for (A_long x = 0; x < output.width; x += 7) RowOf<Pixel>(output, y)[x] = {};
        }
    }
    if (Is(Mutant::kSharesEnvironment) && std::getenv("JUDGED_TWICE")) {
        RowOf<Pixel>(output, output.height / 2)[output.width / 2] = {};
    }
    if (Is(Mutant::kSharesScratch)) {
        sharedScratch = static_cast<int>(look.amount * 100);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        first->red = static_cast<Channel<Pixel>>(sharedScratch);
    }
    if constexpr (std::is_floating_point_v<Channel<Pixel>>) {
        const bool wanted = Is(Mutant::kDrawsNaN) || (Is(Mutant::kNaNInRange) && look.amount > 0.9f);
        if (wanted) first->green = std::numeric_limits<float>::quiet_NaN();
    }
}

template <typename Pixel>
void CopyLayer(const PF_EffectWorld& input, const PF_EffectWorld& output, const Look& look) {
    std::vector<float> scratch(static_cast<std::size_t>(output.width) + 1, look.amount);
    const A_long shift = Is(Mutant::kIgnoresDownsample) ? 16 : 0;
    const PF_LRect from{input.origin_x + shift, input.origin_y, input.origin_x + shift + input.width,
                        input.origin_y + input.height};
    const PF_LRect to{output.origin_x, output.origin_y, output.origin_x + output.width,
                      output.origin_y + output.height};
    const PF_LRect both = IntersectionOf(from, to);
    const A_long steps = PacedSteps(look.steps);
    std::uint64_t worked = 1;
    for (A_long y = both.top; y < both.bottom; ++y) {
        const Pixel* source = RowOf<Pixel>(input, y - input.origin_y);
        Pixel* target = RowOf<Pixel>(output, y - output.origin_y);
        for (A_long x = both.left; x < both.right; ++x) {
            Pixel pixel = source[x - from.left];
            if (Is(Mutant::kIndexesByPixel)) {
                static const float table[256] = {};
                pixel.red = static_cast<Channel<Pixel>>(table[static_cast<std::ptrdiff_t>(
                    static_cast<double>(pixel.red) * (std::is_floating_point_v<Channel<Pixel>> ? 255 : 0))]);
            }
            pixel.alpha = Scaled<Pixel>(pixel.alpha, scratch[static_cast<std::size_t>(x - to.left)]);
            target[x - to.left] = pixel;
            worked = Worked(worked, steps);
        }
    }
    [[maybe_unused]] volatile std::uint64_t sink = worked;
}

/// What a pixel function of the tint gets.
struct Tint {
    PF_Pixel colour;
    A_long seen = 0;  ///< only the wrong module counts
};

template <typename Pixel>
PF_Err TintPixel(void* refcon, A_long, A_long, Pixel* in, Pixel* out) {
    auto* tint = static_cast<Tint*>(refcon);
    *out = *in;
    if (in->alpha == Channel<Pixel>{}) return PF_Err_NONE;
    if (Is(Mutant::kCountsRows)) {
        out->red = static_cast<Channel<Pixel>>(tint->seen++ % 250);
        return PF_Err_NONE;
    }
    out->red = Scaled<Pixel>(in->red, static_cast<float>(tint->colour.red) / 255);
    out->green = Scaled<Pixel>(in->green, static_cast<float>(tint->colour.green) / 255);
    return PF_Err_NONE;
}

template <typename Suite, typename Pixel>
PF_Err TintWith(PF_InData* in, const char* name, int32_t version, PF_EffectWorld* source, Tint* tint,
                PF_EffectWorld* output) {
    const Held<Suite> iterate(in, name, version);
    return iterate->iterate(in, 0, output->height, source, nullptr, tint, TintPixel<Pixel>, output);
}

PF_Err TintOutput(PF_InData* in, short depth, const Look& look, PF_EffectWorld* output) {
    const Held<PF_WorldTransformSuite1> transform(in, kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1);
    Temporary copy(in, *output);
    PF_Err error = transform->copy(in->effect_ref, output, &copy.world, nullptr, nullptr);
    Tint tint{look.colour};
    if (!error) {
        if (depth == 8) {
            error = TintWith<PF_Iterate8Suite1, PF_Pixel>(in, kPFIterate8SuiteName, kPFIterate8SuiteVersion1,
                                                          &copy.world, &tint, output);
        } else if (depth == 16) {
            error = TintWith<PF_iterate16Suite1, PF_Pixel16>(in, kPFIterate16SuiteName, kPFIterate16SuiteVersion1,
                                                             &copy.world, &tint, output);
        } else {
            error = TintWith<PF_iterateFloatSuite1, PF_PixelFloat>(
                in, kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1, &copy.world, &tint, output);
        }
    }
    copy.abandoned = error && Is(Mutant::kLeaksOnError);
    return error;
}

PF_Err LayPicture(PF_InData* in, PF_EffectWorld* picture, PF_EffectWorld* output) {
    if (!picture) return PF_Err_NONE;
    const Held<PF_WorldTransformSuite1> transform(in, kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1);
    const PF_CompositeMode mode{PF_Xfer_IN_FRONT, 0, 255, 0, PF_MAX_CHAN16};
    const PF_Rect whole{0, 0, picture->width, picture->height};
    return transform->transfer_rect(in->effect_ref, in->quality, PF_MF_Alpha_STRAIGHT, in->field, &whole, picture,
                                    &mode, nullptr, picture->origin_x - output->origin_x,
                                    picture->origin_y - output->origin_y, output);
}

/// The faults of a whole render that are not about pixels.
void Misbehave(PF_InData* in, PF_SmartRenderExtra* extra, PF_EffectWorld* input) {
    if (Is(Mutant::kExits)) std::exit(3);
    while (Is(Mutant::kHangs)) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (Is(Mutant::kUsesReleasedSuite)) {
        const PF_HandleSuite1* kept = nullptr;
        {
            const Held<PF_HandleSuite1> handles(in, kPFHandleSuiteName, kPFHandleSuiteVersion1);
            kept = handles.Get();
        }
        kept->host_dispose_handle(kept->host_new_handle(4));
    }
    if (Is(Mutant::kAsksUnknownSuite)) {
        const void* suite = nullptr;
        if (!in->pica_basicP->AcquireSuite("PF Suite Of Dreams", 3, &suite)) {
            in->pica_basicP->ReleaseSuite("PF Suite Of Dreams", 3);
        }
    }
    if (Is(Mutant::kWritesStatic) || Is(Mutant::kCrashesLate)) ++frames;
    if (Is(Mutant::kCrashesLate) && frames > 150) std::abort();
    if (Is(Mutant::kFreesPreRenderData)) std::free(extra->input->pre_render_data);
    if (Is(Mutant::kWritesInput) && input && input->data) input->data->alpha ^= 1;
    if (Is(Mutant::kWritesGlobalData)) **in->global_data = static_cast<char>(**in->global_data + 1);
    if (Is(Mutant::kCrashesOnTinyLayer) && input && input->width < 3) std::abort();
    if (Is(Mutant::kCrashesAt16Bits) && extra->input->bitdepth == 16) std::abort();
    if (Is(Mutant::kDividesByStep)) {
        volatile A_long step = in->time_step;
        volatile A_long count = in->total_time / step;
        static_cast<void>(count);
    }
    if (Is(Mutant::kGrowsPerFrame)) std::memset(std::malloc(8192), 1, 8192);
    if (Is(Mutant::kTrustsMalloc)) std::memset(std::malloc(64), 1, 64);
    if (Is(Mutant::kLeaksPerThread)) {
        thread_local char* kept = nullptr;
        if (!kept) std::memset(kept = static_cast<char*>(std::malloc(1 << 17)), 1, 1 << 17);
    }
    if (Is(Mutant::kOutlivesUnload)) {
        std::thread([] {
            for (std::atomic<int> turns{0};; ++turns) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }).detach();
    }
}

Look LookOf(PF_InData* in) {
    Look look{};
    const double amount = ValueOf(in, JUDGED_AMOUNT).u.fs_d.value;
    if (Is(Mutant::kFailsAtMaximum) && amount >= 100) throw PF_Err{PF_Err_INTERNAL_STRUCT_DAMAGED};
    look.amount = amount >= 0 ? static_cast<float>(std::min(amount, 100.0) / 100) : 0.0f;
    look.mode = ValueOf(in, JUDGED_MODE).u.pd.value;
    if (Is(Mutant::kTrustsPopup)) {
        static PF_Err (*const kinds[])() = {nullptr, [] { return PF_Err{0}; }, [] { return PF_Err{0}; },
                                            [] { return PF_Err{0}; }};
        kinds[look.mode]();
    }
    if (kDriverFactor) look.amount *= kDriverFactor();
    look.steps = std::clamp<A_long>(ValueOf(in, JUDGED_STEPS).u.sd.value, 1, 64);
    look.colour = ValueOf(in, JUDGED_COLOUR).u.cd.value;
    return look;
}

PF_Err Draw(PF_InData* in, PF_SmartRenderExtra* extra) {
    Look look = LookOf(in);
    Layers layers(in, extra);
    PF_EffectWorld* input = layers.Take(kInputId);
    PF_EffectWorld* picture = layers.Take(kPictureId);
    if (Is(Mutant::kTakesUnknownLayer)) {
        PF_EffectWorld* unknown = nullptr;
        extra->cb->checkout_layer_pixels(in->effect_ref, 77, &unknown);
    }
    PF_EffectWorld* output = nullptr;
    if (const PF_Err error = extra->cb->checkout_output(in->effect_ref, &output)) return error;
    if (!output || !output->data) return PF_Err_NONE;
    if (const PF_Err error = in->utils->fill(in->effect_ref, nullptr, nullptr, output)) return error;
    Misbehave(in, extra, input);
    if (Is(Mutant::kDrawsNothing)) return PF_Err_NONE;
    const short depth = extra->input->bitdepth;
    if (input && input->data) {
        if (depth == 8) CopyLayer<PF_Pixel>(*input, *output, look);
        if (depth == 16) CopyLayer<PF_Pixel16>(*input, *output, look);
        if (depth == 32) CopyLayer<PF_PixelFloat>(*input, *output, look);
    }
    if (look.mode == 2) {
        if (const PF_Err error = TintOutput(in, depth, look, output)) return error;
    }
    if (look.mode == 3) {
        if (const PF_Err error = LayPicture(in, picture, output)) return error;
    }
    if (depth == 8) Spoil<PF_Pixel>(*output, look, in);
    if (depth == 16) Spoil<PF_Pixel16>(*output, look, in);
    if (depth == 32) Spoil<PF_PixelFloat>(*output, look, in);
    if (Is(Mutant::kRemembersFrame)) lastAmount = look.amount;
    return PF_Err_NONE;
}

}  // namespace

PF_Err Render(PF_InData* in, PF_OutData* out, PF_SmartRenderExtra* extra) {
    try {
        return Draw(in, extra);
    } catch (PF_Err error) {
        if (Is(Mutant::kEndlessErrorText)) std::memset(out->return_msg, 'e', sizeof(out->return_msg));
        if (Is(Mutant::kIgnoresMissingSuite)) return PF_Err_NONE;
        throw;
    }
}
