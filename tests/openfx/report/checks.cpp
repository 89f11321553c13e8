// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The checks of the report: frames against each other, and hosts that have little.

#include "tests/openfx/report/checks.h"

#include <thread>
#include <utility>

#include "tests/openfx/host/instance.h"
#include "tests/openfx/openfx_fixture.h"

namespace umbrant::ofx {

namespace {

constexpr OfxRectI kBounds{-7, 11, 33, 41};

/// A life of the plug-in with an instance. `Problems` ends it.
class Life {
 public:
    explicit Life(const std::string& bundle, HostOptions options = {}, std::vector<Fault> faults = {},
                  const std::string& context = kFilter)
        : host_(std::move(options)) {
        plugIn_ = PlugIn::Open(host_, bundle, problems_);
        host_.record.SetFaults(std::move(faults));
        if (plugIn_ == nullptr) return;
        status_ = plugIn_->Start();
        if (Succeeded(status_) && plugIn_->Context(context) != nullptr) {
            instance_ = Instance::Create(*plugIn_, context, status_);
        }
    }

    Host& TheHost() { return host_; }
    PlugIn* ThePlugIn() { return plugIn_.get(); }
    Instance* TheInstance() { return instance_.get(); }
    /// Notes that a life must have an instance.
    bool Ready() {
        if (instance_ != nullptr) return true;
        Add("no instance; the status is " + StatusName(status_));
        return false;
    }
    void Add(const std::string& problem) {
        if (!problem.empty()) problems_ += (problems_.empty() ? "" : "\n") + problem;
    }
    Picture Drawn(const Inputs& inputs, const FrameOptions& options = {}) {
        if (!Ready()) return {};
        instance_->Connect(inputs);
        Frame frame = instance_->Render(options);
        if (frame.status != kOfxStatOK) Add("Render answered " + StatusName(frame.status));
        return std::move(frame.output);
    }
    std::string Problems() {
        host_.record.SetFaults({});
        instance_.reset();
        if (plugIn_ != nullptr) plugIn_->Unload();
        for (const std::string& violation : host_.record.Violations()) Add(violation);
        return problems_;
    }

 private:
    Host host_;
    std::unique_ptr<PlugIn> plugIn_;
    std::unique_ptr<Instance> instance_;
    OfxStatus status_ = kOfxStatFailed;
    std::string problems_;
};

std::string Starts(const std::string& bundle) {
    Life life(bundle);
    life.Ready();
    return life.Problems();
}

std::string StartsInGeneral(const std::string& bundle) {
    Life life(bundle, {}, {}, kGeneral);
    life.Ready();
    return life.Problems();
}

std::string DrawsBytes(const std::string& bundle) {
    Life life(bundle);
    life.Drawn({Disc(kBounds)});
    return life.Problems();
}

std::string DrawsFloats(const std::string& bundle) {
    Life life(bundle);
    life.Drawn({Disc(kBounds, Depth::kFloat)});
    return life.Problems();
}

/// Draws with options that must not change a pixel.
std::string DrawsTheSame(const std::string& bundle, const FrameOptions& options) {
    Life life(bundle);
    const Picture plain = life.Drawn({Disc(kBounds)});
    life.Add(Difference(life.Drawn({Disc(kBounds)}, options), plain));
    return life.Problems();
}

std::string TakesRowsFromTheTop(const std::string& bundle) {
    FrameOptions options;
    options.negativeRows = true;
    return DrawsTheSame(bundle, options);
}

std::string TakesGaps(const std::string& bundle) {
    FrameOptions options;
    options.gap = 28;
    return DrawsTheSame(bundle, options);
}

std::string NeedsRenderAlone(const std::string& bundle) {
    FrameOptions options;
    options.onlyRender = true;
    return DrawsTheSame(bundle, options);
}

std::string FollowsTheSource(const std::string& bundle) {
    Life life(bundle);
    Picture moved = Disc(kBounds);
    Picture expected = life.Drawn({moved});
    const auto move = [](OfxRectI& area) { area = {area.x1 + 5, area.y1 - 3, area.x2 + 5, area.y2 - 3}; };
    move(moved.bounds);
    move(expected.bounds);
    life.Add(Difference(life.Drawn({moved}), expected));
    return life.Problems();
}

std::string DrawsParts(const std::string& bundle) {
    Life life(bundle);
    const Picture whole = life.Drawn({Disc(kBounds)});
    FrameOptions options;
    options.window = OfxRectI{kBounds.x1 + 1, kBounds.y1 + 2, kBounds.x2 - 5, kBounds.y2 - 4};
    const Picture part = life.Drawn({Disc(kBounds)}, options);
    if (!life.Ready()) return life.Problems();
    Picture actual(*options.window, Depth::kByte), expected(*options.window, Depth::kByte);
    for (int y = options.window->y1; y < options.window->y2; ++y) {
        const auto count = static_cast<std::size_t>(4 * WidthOf(*options.window));
        std::copy_n(part.At(options.window->x1, y), count, actual.At(options.window->x1, y));
        std::copy_n(whole.At(options.window->x1, y), count, expected.At(options.window->x1, y));
    }
    life.Add(Difference(actual, expected));
    return life.Problems();
}

std::string DrawsAtHalfScale(const std::string& bundle) {
    Life life(bundle);
    Inputs inputs{Disc({-4, 6, 16, 20})};
    inputs.scaleX = inputs.scaleY = 0.5;
    life.Drawn(inputs);
    return life.Problems();
}

std::string DrawsPremultiplied(const std::string& bundle) {
    Life life(bundle);
    Inputs inputs{Disc(kBounds, Depth::kFloat)};
    for (std::size_t i = 0; i < inputs.source.channels.size(); ++i) {
        if (i % 4 != 3) inputs.source.channels[i] *= inputs.source.channels[i | 3];
    }
    inputs.premultiplication = kPremultiplied;
    life.Drawn(inputs);
    return life.Problems();
}

std::string DrawsEightAtOnce(const std::string& bundle) {
    Life life(bundle);
    const Picture plain = life.Drawn({Disc(kBounds)});
    if (!life.Ready()) return life.Problems();
    std::vector<Frame> frames(8);
    std::vector<std::thread> threads;
    for (Frame& frame : frames) threads.emplace_back([&] { frame = life.TheInstance()->Render(); });
    for (std::thread& thread : threads) thread.join();
    for (const Frame& frame : frames) life.Add(Difference(frame.output, plain));
    return life.Problems();
}

std::string DrawsAFixedFrame(const std::string& bundle) {
    HostOptions options;
    options.multiResolution = false;
    Life life(bundle, options);
    life.Drawn({Disc({0, 0, static_cast<int>(options.projectWidth), static_cast<int>(options.projectHeight)})});
    return life.Problems();
}

std::string SurvivesNoSource(const std::string& bundle) {
    Life life(bundle);
    if (!life.Ready()) return life.Problems();
    life.TheInstance()->Connect({Disc(kBounds)});
    FrameOptions options;
    options.sourceMissing = true;
    life.TheInstance()->Render(options);
    options.sourceMissing = false;
    options.sourceWithoutData = true;
    life.TheInstance()->Render(options);
    return life.Problems();
}

std::string Stops(const std::string& bundle) {
    Life life(bundle);
    life.Drawn({Disc(kBounds)});
    if (!life.Ready()) return life.Problems();
    FrameOptions options;
    options.abortAt = 1;
    life.TheInstance()->Render(options);
    return life.Problems();
}

std::string IdentityHolds(const std::string& bundle) {
    Life life(bundle);
    if (!life.Ready()) return life.Problems();
    const Picture source = Disc(kBounds);
    life.TheInstance()->Connect({source});
    const Identity identity = life.TheInstance()->IsIdentity();
    if (identity.status != kOfxStatOK || identity.clip != "Source") return life.Problems();
    const Frame frame = life.TheInstance()->Render();
    for (int y = kBounds.y1; y < kBounds.y2; ++y) {
        for (int x = kBounds.x1; x < kBounds.x2; ++x) {
            // A colour below an alpha of 0 is not visible.
            const int first = source.At(x, y)[3] > 0 ? 0 : 3;
            const bool same = std::equal(source.At(x, y) + first, source.At(x, y) + 4, frame.output.At(x, y) + first);
            if (!same) life.Add("IsIdentity names Source, and the frame differs from it");
            if (!same) return life.Problems();
        }
    }
    return life.Problems();
}

std::string NeedsLittle(const std::string& bundle) {
    HostOptions options;
    options.minimal = true;
    options.absentSuites = {"OfxMemorySuite",   "OfxMultiThreadSuite", "OfxMessageSuite",
                            "OfxProgressSuite", "OfxTimeLineSuite",    "OfxInteractSuite"};
    Life life(bundle, options);
    life.Drawn({Disc(kBounds)});
    return life.Problems();
}

std::string RefusesWithoutSuites(const std::string& bundle) {
    std::string problems;
    for (const char* suite : {"OfxPropertySuite", "OfxImageEffectSuite", "OfxParameterSuite"}) {
        HostOptions options;
        options.absentSuites = {suite};
        Life life(bundle, options);
        if (life.TheInstance() != nullptr) life.Add(std::string(suite) + " is absent, and the plug-in starts");
        problems += life.Problems();
    }
    return problems;
}

std::string SurvivesFailures(const std::string& bundle) {
    std::map<std::string, int> calls;
    {
        Life life(bundle);
        life.Drawn({Disc(kBounds)});
        life.Problems();
        calls = life.TheHost().record.Calls();
    }
    std::string problems;
    for (const auto& [function, count] : calls) {
        for (const int nth : {0, 1, count / 2, count}) {
            Life life(bundle, {}, {{function, nth, kOfxStatFailed}});
            if (life.TheInstance() != nullptr) {
                life.TheInstance()->Connect({Disc(kBounds)});
                life.TheInstance()->Render();
            }
            const std::string found = life.Problems();
            if (!found.empty()) problems += function + " fails at call " + std::to_string(nth) + ": " + found + "\n";
        }
    }
    return problems;
}

std::string LeavesUnknownActions(const std::string& bundle) {
    Life life(bundle);
    if (life.Ready()) life.ThePlugIn()->Call("org.umbrant.noSuchAction", nullptr, nullptr, nullptr);
    return life.Problems();
}

std::string StartsAgain(const std::string& bundle) {
    std::string problems;
    for (int i = 0; i < 3; ++i) problems += DrawsBytes(bundle);
    return problems;
}

}  // namespace

const std::vector<Check>& AllChecks() {
    static const std::vector<Check> checks = {
        {"loads, describes itself and makes an instance in the filter context", Starts},
        {"makes an instance in the general context", StartsInGeneral},
        {"draws 8-bit images", DrawsBytes},
        {"draws float images", DrawsFloats},
        {"draws premultiplied images", DrawsPremultiplied},
        {"draws the same with negative row bytes", TakesRowsFromTheTop},
        {"draws the same with gaps between rows", TakesGaps},
        {"draws the same without the actions around Render", NeedsRenderAlone},
        {"follows a source that begins elsewhere", FollowsTheSource},
        {"draws a part of a frame as that part of the whole", DrawsParts},
        {"draws at half of the scale", DrawsAtHalfScale},
        {"draws eight frames at once", DrawsEightAtOnce},
        {"draws in a host with fixed sizes", DrawsAFixedFrame},
        {"draws without an image of its source", SurvivesNoSource},
        {"stops when the host asks", Stops},
        {"is the source to the bit where it claims identity", IdentityHolds},
        {"needs only the necessary properties and suites", NeedsLittle},
        {"refuses a host without a necessary suite", RefusesWithoutSuites},
        {"survives each suite function that fails", SurvivesFailures},
        {"leaves unknown actions to the host", LeavesUnknownActions},
        {"starts again after it was unloaded", StartsAgain},
    };
    return checks;
}

}  // namespace umbrant::ofx
