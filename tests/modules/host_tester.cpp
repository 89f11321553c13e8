// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The other way round: an effect that judges its host. Whenever it is asked for a frame it calls every service that the
// host offers and compares the answers with what the interface promises; a test reads what it has to complain about.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "hostapi/hostapi.h"
#include "tests/host/compositing/transfer_model.h"

#define TESTER_EXPORT extern "C" [[gnu::visibility("default")]]

namespace {

std::string complaints;
int questions = 0;

/// One promise of the host.
void Expect(bool kept, const std::string& promise) {
    ++questions;
    if (!kept) complaints += promise + "\n";
}

/// A suite for the length of a test.
template <typename Suite>
class Held {
 public:
    Held(const PF_InData* in, const char* name, int32_t version)
        : basic_(in->pica_basicP), name_(name), version_(version) {
        const void* suite = nullptr;
        const SPErr error = basic_->AcquireSuite(name, version, &suite);
        Expect(!error && suite, std::string("the suite ") + name + " is lent");
        suite_ = static_cast<const Suite*>(suite);
    }
    ~Held() { Expect(!basic_->ReleaseSuite(name_, version_), std::string("the suite ") + name_ + " is taken back"); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    const Suite* operator->() const { return suite_; }

 private:
    SPBasicSuite* basic_;
    const char* name_;
    int32_t version_;
    const Suite* suite_ = nullptr;
};

void TestBasicSuite(PF_InData* in) {
    SPBasicSuite* basic = in->pica_basicP;
    const void* suite = &suite;
    Expect(basic->AcquireSuite("PF Suite Of Dreams", 1, &suite) != 0, "an unknown suite is refused");
    Expect(suite == nullptr, "a refused suite is null");
    Expect(basic->AcquireSuite(kPFHandleSuiteName, 99, &suite) != 0, "an unknown version is refused");
    Expect(basic->IsEqual("one", "one") != 0 && basic->IsEqual("one", "two") == 0, "IsEqual compares texts");
    void* block = nullptr;
    Expect(!basic->AllocateBlock(16, &block) && block, "a block is given");
    std::memset(block, 7, 16);
    void* moved = nullptr;
    Expect(!basic->ReallocateBlock(block, 4096, &moved) && moved, "a block grows");
    Expect(static_cast<char*>(moved)[0] == 7 && static_cast<char*>(moved)[15] == 7,
           "a block that grows keeps its bytes");
    Expect(!basic->FreeBlock(moved), "a block is taken back");
}

void TestHandles(PF_InData* in) {
    const Held<PF_HandleSuite1> handles(in, kPFHandleSuiteName, kPFHandleSuiteVersion1);
    PF_Handle handle = handles->host_new_handle(100);
    Expect(handle && handles->host_get_handle_size(handle) == 100, "a handle has the size that was asked for");
    auto* bytes = static_cast<char*>(handles->host_lock_handle(handle));
    Expect(bytes && bytes == *handle, "a lock gives the address that the handle leads to");
    std::memset(bytes, 5, 100);
    Expect(handles->host_lock_handle(handle) == bytes, "a second lock gives the same address");
    handles->host_unlock_handle(handle);
    Expect(handles->host_resize_handle(200, &handle) != 0, "a locked handle is not resized");
    handles->host_unlock_handle(handle);
    Expect(!handles->host_resize_handle(200, &handle) && handles->host_get_handle_size(handle) == 200,
           "a handle grows");
    Expect((*handle)[0] == 5 && (*handle)[99] == 5, "a handle that grows keeps its bytes");
    Expect(!handles->host_resize_handle(10, &handle) && (*handle)[9] == 5,
           "a handle that shrinks keeps its first bytes");
    handles->host_dispose_handle(handle);
    const PF_Handle empty = handles->host_new_handle(0);
    Expect(empty && handles->host_get_handle_size(empty) == 0, "a handle may be empty");
    handles->host_dispose_handle(empty);
}

template <typename Pixel>
Pixel* RowOf(const PF_EffectWorld& world, A_long y) {
    return reinterpret_cast<Pixel*>(reinterpret_cast<char*>(world.data) + std::ptrdiff_t{world.rowbytes} * y);
}

/// A world of the host's for the length of a test.
template <typename Pixel>
struct Made {
    Made(PF_InData* data, PF_PixelFormat format, A_long width, A_long height)
        : in(data), suite(data, kPFWorldSuiteName, kPFWorldSuiteVersion2) {
        Expect(!suite->PF_NewWorld(in->effect_ref, width, height, 1, format, &world), "a world is made");
        Expect(world.width == width && world.height == height && world.data, "a world has the size that was asked for");
        Expect(world.rowbytes >= width * A_long{sizeof(Pixel)}, "a world's rows hold its pixels");
        PF_PixelFormat told = 0;
        Expect(!suite->PF_GetPixelFormat(&world, &told) && told == format, "a world has the format that was asked for");
        bool clear = true;
        for (A_long y = 0; y < height; ++y) {
            for (A_long x = 0; x < width; ++x) clear &= RowOf<Pixel>(world, y)[x].alpha == decltype(Pixel::alpha){};
        }
        Expect(clear, "a world that is to be clear is");
    }
    ~Made() {
        Expect(!suite->PF_DisposeWorld(in->effect_ref, &world), "a world is taken back");
        Expect(world.data == nullptr, "a world that was taken back has no pixels");
    }
    Made(const Made&) = delete;
    Made& operator=(const Made&) = delete;
    Pixel* At(A_long x, A_long y) const { return RowOf<Pixel>(world, y) + x; }

    PF_InData* in;
    Held<PF_WorldSuite2> suite;
    PF_EffectWorld world{};
};

void TestWorlds(PF_InData* in) {
    const Held<PF_WorldSuite2> worlds(in, kPFWorldSuiteName, kPFWorldSuiteVersion2);
    PF_EffectWorld world{};
    Expect(worlds->PF_NewWorld(in->effect_ref, 0, 5, 1, PF_PixelFormat_ARGB32, &world) != 0,
           "an empty world is refused");
    Expect(worlds->PF_NewWorld(in->effect_ref, 5, -1, 1, PF_PixelFormat_ARGB32, &world) != 0,
           "a world of negative size is refused");
    Expect(worlds->PF_NewWorld(in->effect_ref, 5, 5, 1, 12345, &world) != 0, "a world of no format is refused");
}

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
        const PF_Point origin{4, -2};
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

bool Within(const PF_LRect& inner, const PF_LRect& outer) {
    const bool empty = inner.left >= inner.right || inner.top >= inner.bottom;
    return empty || (inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
                     inner.bottom <= outer.bottom);
}

/// What render compares with.
PF_CheckoutResult promised;
PF_LRect asked;

PF_Err PreRender(PF_InData* in, PF_PreRenderExtra* extra) {
    const PF_RenderRequest& request = extra->input->output_request;
    asked = request.rect;
    const auto take = [&](PF_ParamIndex index, A_long id, PF_CheckoutResult* result) {
        return extra->cb->checkout_layer(in->effect_ref, index, id, &request, in->current_time, in->time_step,
                                         in->time_scale, result);
    };
    Expect(!take(0, 5, &promised), "the layer is promised");
    Expect(Within(promised.result_rect, request.rect), "what is promised lies inside of the request");
    Expect(Within(promised.result_rect, promised.max_result_rect), "what is promised lies inside of the largest");
    PF_CheckoutResult other{};
    Expect(take(0, 5, &other) != 0, "an id that is in use is refused");
    Expect(take(0, -3, &other) != 0, "a negative id is refused");
    Expect(take(1, 6, &other) != 0, "a row that is no layer is refused");
    Expect(take(99, 7, &other) != 0, "a row that is not there is refused");
    extra->output->result_rect = promised.result_rect;
    extra->output->max_result_rect = promised.max_result_rect;
    return PF_Err_NONE;
}

void TestParameters(PF_InData* in) {
    PF_ParamDef def{};
    const auto take = [&](PF_ParamIndex index) {
        return in->inter.checkout_param(in->effect_ref, index, in->current_time, in->time_step, in->time_scale, &def);
    };
    Expect(!take(1) && def.param_type == PF_Param_FLOAT_SLIDER && def.u.fs_d.value == 12.5,
           "a row is checked out with its type and default");
    Expect(!in->inter.checkin_param(in->effect_ref, &def), "a row is checked in");
    Expect(take(-1) != 0 && take(50) != 0, "a row that is not there is refused");
    PF_ParamDef added{};
    added.param_type = PF_Param_ANGLE;
    Expect(in->inter.add_param(in->effect_ref, -1, &added) != 0, "rows are not added while rendering");
}

PF_Err Render(PF_InData* in, PF_SmartRenderExtra* extra) {
    PF_EffectWorld* layer = nullptr;
    Expect(!extra->cb->checkout_layer_pixels(in->effect_ref, 5, &layer), "the layer's pixels are given");
    Expect(layer && layer->origin_x == promised.result_rect.left && layer->origin_y == promised.result_rect.top &&
               layer->width == promised.result_rect.right - promised.result_rect.left &&
               layer->height == promised.result_rect.bottom - promised.result_rect.top,
           "the layer's pixels are where they were promised");
    PF_EffectWorld* again = nullptr;
    Expect(extra->cb->checkout_layer_pixels(in->effect_ref, 5, &again) != 0, "pixels are given once");
    Expect(extra->cb->checkout_layer_pixels(in->effect_ref, 6, &again) != 0,
           "pixels that nobody asked for are refused");
    PF_EffectWorld* output = nullptr;
    Expect(!extra->cb->checkout_output(in->effect_ref, &output) && output, "the output is given");
    Expect(output->width == promised.result_rect.right - promised.result_rect.left &&
               output->height == promised.result_rect.bottom - promised.result_rect.top,
           "the output covers the result rectangle");
    Expect(output->data != layer->data, "input and output are two worlds");

    TestParameters(in);
    TestBasicSuite(in);
    TestHandles(in);
    TestWorlds(in);
    TestIterate<PF_Iterate8Suite1, PF_Pixel>(in, kPFIterate8SuiteName, kPFIterate8SuiteVersion1, PF_PixelFormat_ARGB32);
    TestIterate<PF_iterate16Suite1, PF_Pixel16>(in, kPFIterate16SuiteName, kPFIterate16SuiteVersion1,
                                                PF_PixelFormat_ARGB64);
    TestIterate<PF_iterateFloatSuite1, PF_PixelFloat>(in, kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1,
                                                      PF_PixelFormat_ARGB128);
    TestIterateGeneric(in);
    TestTransfers<PF_Pixel>(in, PF_PixelFormat_ARGB32, 0.6 / 255);
    TestTransfers<PF_PixelFloat>(in, PF_PixelFormat_ARGB128, 1e-4);
    TestUtilities(in);

    Expect(!extra->cb->checkin_layer_pixels(in->effect_ref, 5), "the layer's pixels are taken back");
    Expect(extra->cb->checkin_layer_pixels(in->effect_ref, 5) != 0, "they are taken back once");
    return in->utils->fill(in->effect_ref, nullptr, nullptr, output);
}

}  // namespace

TESTER_EXPORT PF_Err TesterMain(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef*[], PF_LayerDef*,
                                void* extra) {
    switch (command) {
        case PF_Cmd_GLOBAL_SETUP:
            out->my_version = 1;
            out->out_flags2 = PF_OutFlag2_SUPPORTS_SMART_RENDER | PF_OutFlag2_FLOAT_COLOR_AWARE;
            return PF_Err_NONE;
        case PF_Cmd_PARAMS_SETUP: {
            PF_ParamDef def{};
            def.param_type = PF_Param_FLOAT_SLIDER;
            std::snprintf(def.name_do_not_use_directly, sizeof(def.name_do_not_use_directly), "Number");
            def.u.fs_d.valid_max = def.u.fs_d.slider_max = 100;
            def.u.fs_d.dephault = 12.5f;
            Expect(in->inter.add_param(in->effect_ref, 5, &def) != 0, "a row out of order is refused");
            Expect(!in->inter.add_param(in->effect_ref, -1, &def), "a row is added");
            out->num_params = 2;
            return PF_Err_NONE;
        }
        case PF_Cmd_SMART_PRE_RENDER:
            return PreRender(in, static_cast<PF_PreRenderExtra*>(extra));
        case PF_Cmd_SMART_RENDER:
            return Render(in, static_cast<PF_SmartRenderExtra*>(extra));
        default:
            return PF_Err_NONE;
    }
}

/// Promises that the host did not keep, one a line; and how many it was asked about.
TESTER_EXPORT const char* HostTesterComplaints() {
    return complaints.c_str();
}
TESTER_EXPORT int HostTesterQuestions() {
    return questions;
}

TESTER_EXPORT PF_Err PluginDataEntryFunction(PF_PluginDataPtr pointer, PF_PluginDataCB callback, SPBasicSuite*,
                                             const char*, const char*) {
    const auto text = [](const char* characters) { return reinterpret_cast<const A_u_char*>(characters); };
    return callback(pointer, text("Host tester"), text("TEST host tester"), text("Tests"), text("TesterMain"),
                    kPluginKind_Effect, 13, 28, 8);
}
