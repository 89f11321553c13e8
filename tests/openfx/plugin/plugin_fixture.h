// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect as a plug-in beside the effect of the library: the same settings for both, and images to compare.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <umbrant/effect.h>

#include "tests/openfx/host/instance.h"
#include "tests/openfx/openfx_fixture.h"

namespace umbrant::ofx {

/// Paths and values as `umbrant render --set` takes them. A point is in pixels of the layer, from its top left corner.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// The bundle under test: UMBRANT_OPENFX_BUNDLE, else the built one.
std::string Bundle();
/// "easing/advanced/distance" as a parameter's name.
std::string ParamName(std::string path);

/// A host with the plug-in and one instance. The test fails where one of them cannot be had.
class Session {
 public:
    explicit Session(HostOptions options = {}, const std::string& context = kFilter);
    ~Session();

    Host& TheHost() { return host_; }
    PlugIn& ThePlugIn() { return *plugIn_; }
    Instance& TheInstance() { return *instance_; }
    std::unique_ptr<Instance> NewInstance();
    /// Sets values; a point is placed on a source with these bounds.
    static void Apply(Instance& instance, const Settings& settings, const OfxRectI& bounds);
    void Apply(const Settings& settings, const OfxRectI& bounds) { Apply(*instance_, settings, bounds); }

 private:
    Host host_;
    std::string context_;
    std::unique_ptr<PlugIn> plugIn_;
    std::unique_ptr<Instance> instance_;
};

/// What the library draws of a source, in the source's coordinates.
Picture FromLibrary(const Picture& source, const Settings& settings, umbrant::FrameOptions options = {},
                    const Picture* texture = nullptr);

/// The panel's rows, as the library lists them.
std::vector<umbrant::Parameter> PanelRows();

/// A preset of these values, as the library writes it.
std::string PresetOf(const Settings& settings);

/// Few samples, and no row at its default: a frame takes milliseconds and any wrong row shows.
const Settings& ManySettings();
/// A shadow of a few pixels, for tests that draw thousands of frames.
const Settings& SmallSettings();

/// Drawn by the plug-in in a session with these inputs.
Picture FromPlugIn(Session& session, Inputs inputs, const Settings& settings, const FrameOptions& options = {});

}  // namespace umbrant::ofx
