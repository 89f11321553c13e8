// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 5: frames of every size, depth, row length, rectangle, scale and time, between pages that nobody may touch.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "host/compositing/rectangles.h"
#include "host/session/error_names.h"
#include "host/validate/processes.h"
#include "host/validate/stage.h"

namespace {

constexpr std::byte kCanary{0xE3};
constexpr A_long kLowest = std::numeric_limits<A_long>::min();
constexpr A_long kHighest = std::numeric_limits<A_long>::max();

FrameRequest RequestOf(const World& layer) {
    FrameRequest request;
    request.layer = &layer;
    return request;
}

std::size_t PixelBytes(const World& world) {
    return static_cast<std::size_t>(world.Width()) * static_cast<std::size_t>(BytesPerPixel(world.PixelDepth()));
}

/// The bytes of a row beyond its last pixel.
std::pair<std::byte*, std::byte*> PaddingOf(World& world, int y) {
    std::byte* row = world.Row(y);
    return {row + PixelBytes(world), row + std::max<A_long>(world.Def().rowbytes, 0)};
}

void FillPadding(World& world) {
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto [begin, end] = PaddingOf(world, y);
        if (begin < end) std::fill(begin, end, kCanary);
    }
}

bool PaddingIsWhole(World& world) {
    for (int y = 0; y < world.Height() && world.Width() > 0; ++y) {
        const auto [begin, end] = PaddingOf(world, y);
        if (begin < end && std::any_of(begin, end, [](std::byte byte) { return byte != kCanary; })) return false;
    }
    return true;
}

/// Watches the paddings of everything that the effect writes to.
WorldWatch PaddingWatch(Trial& trial) {
    return [&trial](World& world, WorldRole role, bool lent) {
        const bool written = role == WorldRole::kOutput || role == WorldRole::kTemporary;
        if (!written) return;
        if (lent) return FillPadding(world);
        const char* what = role == WorldRole::kOutput ? "the output" : "a temporary world";
        if (!PaddingIsWhole(world)) trial.Fail(fmt::format("bytes between the rows of {} were written", what));
        if (!world.Memory().SlackIsWhole()) trial.Fail(fmt::format("bytes outside of {} were written", what));
    };
}

/// Draws every style at the depths that the effect knows; gives the digests.
std::vector<std::uint64_t> DrawStyles(Stage& stage, int width, int height, const std::vector<Depth>& depths) {
    std::vector<std::uint64_t> digests;
    stage.Cheapen();
    for (const Depth depth : depths) {
        const World layer = TestPicture(width, height, depth);
        for (const Variant& variant : StyleVariants(stage.Session().Params(), 4)) {
            ParamSet params = stage.Session().Params();
            variant.apply(params);
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.texture = &layer;
            const auto frame = stage.Draw(request, fmt::format("{} at {} bits", variant.name, static_cast<int>(depth)));
            digests.push_back(frame ? DigestOf(frame->output) : 0);
        }
    }
    return digests;
}

/// Draws one size; every outcome but a frame or want of memory fails.
void DrawSize(Trial& trial, Stage& stage, int width, int height, Depth depth) {
    const World layer = TestPicture(width, height, depth);
    if (layer.IsNull()) return;
    trial.Count("frames");
    const auto frame = stage.Session().Render(RequestOf(layer));
    const std::string what = fmt::format("a layer of {} x {} at {} bits", width, height, static_cast<int>(depth));
    if (!frame) {
        const std::string& sentence = frame.Error().sentence;
        if (sentence.find(ErrorName(PF_Err_OUT_OF_MEMORY)) == std::string::npos) {
            trial.Fail(fmt::format("{}: {}", what, sentence));
        }
        return;
    }
    if (const auto place = NotFinite(frame->output)) {
        trial.Fail(fmt::format("{}: the channel at {} is no finite number", what, *place));
    }
}

void DrawsEverySize(Trial& trial) {
    constexpr int kSizes[] = {0, 1, 2, 3, 7, 8, 15, 16, 17, 63, 64, 65, 127, 719, 1920};
    constexpr std::size_t kCount = std::size(kSizes);
    std::vector<Part> parts;
    parts.push_back({"with layers of common sizes",
                     [&](Trial& part) {
                         Stage stage(part);
                         stage.Cheapen();
                         for (std::size_t i = 0; i < kCount; ++i) {
                             // Every size with itself up to 127, and with another one across.
                             if (kSizes[i] <= 127) DrawSize(part, stage, kSizes[i], kSizes[i], Depth::k8);
                             DrawSize(part, stage, kSizes[i], kSizes[(i * 7 + 3) % kCount], Depth::k32);
                             DrawSize(part, stage, kSizes[(i * 11 + 5) % kCount], kSizes[i], Depth::k8);
                         }
                         stage.EndEven("after all sizes");
                     },
                     {}});
    for (const auto& [width, height] :
         {std::pair(8191, 3), std::pair(3, 8191), std::pair(16384, 2), std::pair(2, 16385), std::pair(29000, 1)}) {
        parts.push_back({fmt::format("with a layer of {} x {}", width, height),
                         [width = width, height = height](Trial& part) {
                             Stage stage(part);
                             stage.Cheapen();
                             DrawSize(part, stage, width, height, Depth::k8);
                             stage.EndEven("after a large layer");
                         },
                         {}});
    }
    RunParts(trial, parts);
}

void DrawsEveryDepth(Trial& trial) {
    RunParts(trial, {{"at 8 and 32 bits",
                      [](Trial& part) {
                          Stage stage(part);
                          stage.Cheapen();
                          for (const Depth depth : {Depth::k8, Depth::k32}) {
                              const World layer = TestPicture(40, 30, depth);
                              for (const Variant& variant : StyleVariants(stage.Session().Params(), 20)) {
                                  ParamSet params = stage.Session().Params();
                                  variant.apply(params);
                                  FrameRequest request = RequestOf(layer);
                                  request.params = &params;
                                  request.texture = &layer;
                                  const auto frame = stage.Draw(request, variant.name);
                                  if (!frame) continue;
                                  if (const auto place = NotFinite(frame->output)) {
                                      part.Fail(fmt::format("{}: the channel at {} is no finite number", variant.name,
                                                            *place));
                                  }
                              }
                          }
                      },
                      {}},
                     {"at 16 bits",
                      [](Trial& part) {
                          Stage stage(part);
                          const bool deep = stage.Session().OutFlags() & PF_OutFlag_DEEP_COLOR_AWARE;
                          stage.Cheapen();
                          const World layer = TestPicture(40, 30, Depth::k16);
                          // An effect that does not announce 16 bits may refuse them, but not crash.
                          part.Count("frames");
                          const auto frame = stage.Session().Render(RequestOf(layer));
                          if (!frame && deep) part.Fail(fmt::format("at 16 bits: {}", frame.Error().sentence));
                      },
                      {}}});
}

void FollowsRowLengths(Trial& trial) {
    const auto digestsWith = [&](Trial& part, const LendingRules& rules) {
        SetLendingRules(rules);
        SessionOptions options;
        options.worldWatch = PaddingWatch(part);
        Stage stage(part, options);
        return DrawStyles(stage, 33, 21, {Depth::k8, Depth::k32});
    };
    const Part rows{"with rows of other lengths",
                    [&](Trial& part) {
                        const auto usual = digestsWith(part, {});
                        for (const int padding : {0, 4, 16, 3 * 16, 4096 - 33 * 4}) {
                            if (digestsWith(part, {MemoryPlacement::kPlain, padding}) != usual) {
                                part.Fail(
                                    fmt::format("the picture changes when rows are {} bytes longer than their "
                                                "pixels",
                                                padding));
                            }
                        }
                    },
                    {}};
    const Part bottomUp{"with rows from the bottom up",
                        [](Trial& part) {
                            SessionOptions options;
                            options.worldWatch = [](World& world, WorldRole role, bool) {
                                if (role == WorldRole::kTemporary || world.Height() < 1 || world.Width() < 1) return;
                                PF_EffectWorld& def = world.Def();
                                auto* bytes = reinterpret_cast<std::byte*>(def.data);
                                bytes += std::ptrdiff_t{def.rowbytes} * (def.height - 1);
                                def.data = reinterpret_cast<PF_PixelPtr>(bytes);
                                def.rowbytes = -def.rowbytes;
                            };
                            Stage stage(part, options);
                            stage.Cheapen();
                            const World layer = TestPicture(33, 21, Depth::k8);
                            stage.Draw(RequestOf(layer), "rows from the bottom up");
                        },
                        {},
                        0,
                        true};
    RunParts(trial, {rows, bottomUp});
}

void StaysInside(Trial& trial) {
    std::vector<Part> parts;
    for (const MemoryPlacement placement : {MemoryPlacement::kFlushRight, MemoryPlacement::kFlushLeft}) {
        const bool right = placement == MemoryPlacement::kFlushRight;
        parts.push_back({right ? "with worlds before a shut page" : "with worlds behind a shut page",
                         [placement](Trial& part) {
                             SetLendingRules({placement, 16});
                             SessionOptions options;
                             options.worldWatch = PaddingWatch(part);
                             Stage stage(part, options);
                             DrawStyles(stage, 32, 24, {Depth::k8, Depth::k16, Depth::k32});
                             DrawStyles(stage, 31, 17, {Depth::k8, Depth::k32});
                             stage.NoteMisbehaviour("");
                         },
                         {}});
    }
    RunParts(trial, parts);
}

bool IsSound(const PF_LRect& rect) {
    return rect.left <= rect.right && rect.top <= rect.bottom;
}

bool Contains(const PF_LRect& outer, const PF_LRect& inner) {
    if (IsEmpty(inner)) return true;
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
}

struct NamedRect {
    const char* name;
    PF_LRect rect;
};

constexpr int kLayerSide = 48;
constexpr NamedRect kRequests[] = {
    {"the whole layer", {0, 0, kLayerSide, kLayerSide}},
    {"a tile", {8, 8, 24, 24}},
    {"a tile at the corner", {40, 40, 56, 56}},
    {"one pixel", {20, 20, 21, 21}},
    {"nothing", {0, 0, 0, 0}},
    {"nothing, elsewhere", {30, 30, 30, 40}},
    {"a place outside", {200, 200, 220, 220}},
    {"a place before the layer", {-60, -60, -20, -20}},
    {"more than the layer", {-30, -30, 90, 90}},
    {"an inverted rectangle", {30, 30, 10, 10}},
    {"everything", {kLowest, kLowest, kHighest, kHighest}},
    {"the far corner", {kHighest - 10, kHighest - 10, kHighest, kHighest}},
    {"the near corner", {kLowest, kLowest, kLowest + 10, kLowest + 10}},
};

void AnswersEveryRequest(Trial& trial) {
    Stage stage(trial);
    stage.Cheapen();
    const World layer = TestPicture(kLayerSide, kLayerSide, Depth::k8);
    for (const Variant& variant : StyleVariants(stage.Session().Params(), 8)) {
        ParamSet params = stage.Session().Params();
        variant.apply(params);
        std::optional<PF_LRect> largest;
        for (const NamedRect& asked : kRequests) {
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.region = asked.rect;
            const std::string what = fmt::format("{}, asked for {}", variant.name, asked.name);
            const auto answer = stage.Ask(request, what);
            if (!answer) continue;
            if (!IsSound(answer->resultRect) || !IsSound(answer->maxRect)) {
                trial.Fail(fmt::format("{}: the answer is turned inside out", what));
            }
            if (!Contains(answer->maxRect, answer->resultRect)) {
                trial.Fail(fmt::format("{}: the result {} reaches beyond the largest, {}", what,
                                       RectText(answer->resultRect), RectText(answer->maxRect)));
            }
            if (!largest) largest = answer->maxRect;
            if (!Same(*largest, answer->maxRect)) {
                trial.Fail(fmt::format("{}: the largest rectangle is {}; for the whole layer it was {}", what,
                                       RectText(answer->maxRect), RectText(*largest)));
            }
        }
    }
    stage.NoteMisbehaviour("");
}

void DistrustsExtents(Trial& trial) {
    const NamedRect hints[] = {{"empty", {0, 0, 0, 0}},
                               {"smaller than the world", {4, 4, 9, 9}},
                               {"larger than the world", {-5, -5, 500, 500}},
                               {"all of the numbers", {kLowest, kLowest, kHighest, kHighest}},
                               {"inverted", {20, 20, 4, 4}}};
    std::vector<Part> parts;
    for (const NamedRect& hint : hints) {
        parts.push_back({fmt::format("with an extent hint that is {}", hint.name),
                         [hint](Trial& part) {
                             SetLendingRules({MemoryPlacement::kFlushRight, {}});
                             SessionOptions options;
                             const WorldWatch padding = PaddingWatch(part);
                             options.worldWatch = [&](World& world, WorldRole role, bool lent) {
                                 padding(world, role, lent);
                                 if (lent) world.Def().extent_hint = hint.rect;
                             };
                             Stage stage(part, options);
                             DrawStyles(stage, 40, 32, {Depth::k8});
                         },
                         {}});
    }
    RunParts(trial, parts);
}

/// The middle of a frame's alpha in pixels of the full-size layer; nothing when it is transparent.
std::optional<std::pair<double, double>> MiddleOf(const Frame& frame, double scaleX, double scaleY) {
    double sum = 0, sumX = 0, sumY = 0;
    for (int y = 0; y < frame.output.Height(); ++y) {
        const auto* row = RowOf<PF_PixelFloat>(frame.output.Def(), y);
        for (int x = 0; x < frame.output.Width(); ++x) {
            const double alpha = row[x].alpha;
            if (!std::isfinite(alpha)) return std::nullopt;
            sum += alpha;
            sumX += alpha * (frame.rect.left + x + 0.5);
            sumY += alpha * (frame.rect.top + y + 0.5);
        }
    }
    if (!(sum > 0)) return std::nullopt;
    return std::pair(sumX / sum / scaleX, sumY / sum / scaleY);
}

void FollowsDownsampling(Trial& trial) {
    constexpr int kFull = 96;
    constexpr std::pair<int, int> kScales[] = {{1, 2}, {1, 3}, {2, 3}, {1, 8}};
    Stage stage(trial);
    stage.Cheapen();
    for (const Variant& variant : StyleVariants(stage.Session().Params(), 3)) {
        ParamSet params = stage.Session().Params();
        variant.apply(params);
        const auto draw = [&](std::pair<int, int> x, std::pair<int, int> y) {
            const World layer = TestPicture(kFull * x.first / x.second, kFull * y.first / y.second, Depth::k32);
            FrameRequest request = RequestOf(layer);
            request.params = &params;
            request.layerWidth = request.layerHeight = kFull;
            request.downsampleX = {x.first, static_cast<A_u_long>(x.second)};
            request.downsampleY = {y.first, static_cast<A_u_long>(y.second)};
            return stage.Draw(request,
                              fmt::format("{} at {}/{} by {}/{}", variant.name, x.first, x.second, y.first, y.second));
        };
        const auto full = draw({1, 1}, {1, 1});
        const auto middle = full ? MiddleOf(*full, 1, 1) : std::nullopt;
        std::vector<std::pair<std::pair<int, int>, std::pair<int, int>>> pairs{{{1, 2}, {1, 1}}, {{1, 1}, {1, 4}}};
        for (const auto& scale : kScales) pairs.push_back({scale, scale});
        for (const auto& [x, y] : pairs) {
            const auto frame = draw(x, y);
            if (!frame || !middle) continue;
            const double scaleX = static_cast<double>(x.first) / x.second;
            const double scaleY = static_cast<double>(y.first) / y.second;
            const auto found = MiddleOf(*frame, scaleX, scaleY);
            const std::string what =
                fmt::format("{} at {}/{} by {}/{}", variant.name, x.first, x.second, y.first, y.second);
            if (!found) {
                trial.Fail(fmt::format("{}: nothing is drawn, although the full size shows something", what));
                continue;
            }
            const double dx = std::abs(found->first - middle->first) * scaleX;
            const double dy = std::abs(found->second - middle->second) * scaleY;
            if (dx > 1 || dy > 1) {
                trial.Fail(
                    fmt::format("{}: the picture lies {:.1f}, {:.1f} of its pixels away from where the full "
                                "size has it",
                                what, dx, dy));
            }
        }
    }
}

void StandsEveryTime(Trial& trial) {
    struct Moment {
        const char* name;
        A_long time, step, total;
        A_u_long scale;
    };
    const Moment moments[] = {{"time 0", 0, 1, 100, 24},
                              {"a negative time", -1000, 1, 100, 24},
                              {"the latest time", kHighest, 1, kHighest, 24},
                              {"the earliest time", kLowest, 1, 100, 24},
                              {"a step of 0", 10, 0, 100, 24},
                              {"a negative step", 10, -1, 100, 24},
                              {"the lowest step and length", 10, kLowest, kLowest, 24},
                              {"no length", 10, 1, 0, 24},
                              {"a scale of 1", 10, 1, 100, 1},
                              {"the largest scale", 10, 1, 100, std::numeric_limits<A_u_long>::max()}};
    std::vector<Part> parts;
    for (const Moment& moment : moments) {
        parts.push_back({fmt::format("at {}", moment.name),
                         [moment](Trial& part) {
                             Stage stage(part);
                             stage.Cheapen();
                             const World layer = TestPicture(24, 24, Depth::k8);
                             FrameRequest request = RequestOf(layer);
                             request.time = moment.time;
                             request.timeStep = moment.step;
                             request.totalTime = moment.total;
                             request.timeScale = moment.scale;
                             stage.Draw(request, moment.name);
                         },
                         {}});
    }
    parts.push_back({"at a scale of 0",
                     [](Trial& part) {
                         SessionOptions options;
                         options.beforeCommand = [](CommandArguments& sent) { sent.in->time_scale = 0; };
                         Stage stage(part, options);
                         const World layer = TestPicture(24, 24, Depth::k8);
                         part.Count("frames");
                         // No host should send it; an error is an answer.
                         const auto frame = stage.Session().Render(RequestOf(layer));
                         static_cast<void>(frame);
                     },
                     {}});
    RunParts(trial, parts);
}

}  // namespace

std::vector<Check> FrameChecks() {
    return {
        {"5.1", "it draws layers of every size, or says that they are too large", DrawsEverySize, Needs::kNothing, 2},
        {"5.2", "it draws at every depth and in every style", DrawsEveryDepth},
        {"5.3", "it follows the rows' length and leaves what lies between rows", FollowsRowLengths},
        {"5.4", "it writes no byte outside of its worlds", StaysInside},
        {"5.5", "it answers every request, and its largest rectangle is one", AnswersEveryRequest},
        {"5.6", "it does not trust extent hints", DistrustsExtents},
        {"5.7", "it draws the same picture at every scale", FollowsDownsampling},
        {"5.8", "it stands every time and step", StandsEveryTime, Needs::kNothing, 2},
    };
}
