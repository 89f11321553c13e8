// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An instance of the plug-in in a host: its handles, and its values at a time. Nothing in it changes after
// CreateInstance but two flags, so any number of threads may use it.

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <umbrant/values.h>

#include "openfx/drawer.h"
#include "openfx/host/properties.h"
#include "openfx/images/alpha.h"
#include "openfx/images/geometry.h"
#include "openfx/parameters/value_mapping.h"

namespace umbrant::openfx {

struct Clip {
    OfxImageClipHandle handle = nullptr;  ///< null where the host has no such clip
    Properties properties{};

    /// Not where the host says that nothing is connected; where it does not say, perhaps.
    bool MayHaveImage() const;
    /// Canonical. None where the host does not know.
    std::optional<OfxRectD> Region(OfxTime time) const;
    /// Of its pixels; 1 where the host does not say.
    double PixelAspect() const;
};

class Instance {
 public:
    /// Throws Error and Refusal.
    explicit Instance(OfxImageEffectHandle handle);

    /// The one that CreateInstance left with the handle. Throws Refusal without a sentence where there is
    /// none.
    static Instance& Of(const void* handle);

    OfxImageEffectHandle Handle() const { return handle_; }
    const Properties& Set() const { return properties_; }
    OfxParamSetHandle ParameterSet() const { return parameterSet_; }
    const Clip& Source() const { return source_; }
    const Clip& Texture() const { return texture_; }
    const Clip& Output() const { return output_; }
    Drawer& TheDrawer() const { return *drawer_; }

    /// The parameter at this place of the table; null where the host has none, or refused it.
    OfxParamHandle Parameter(std::size_t place) const { return parameters_[place]; }
    OfxParamHandle Parameter(const char* name) const { return parameters_[PlaceOf(name)]; }

    /// The numbers of a row with a value at a time; its default where the host has no such parameter. Throws Refusal
    /// where the host has it and does not give its value.
    HostNumbers Numbers(std::size_t place, OfxTime time) const;
    double Number(const char* name, OfxTime time) const { return Numbers(PlaceOf(name), time)[0]; }
    AlphaChoice Alpha(OfxTime time) const;

    /// All values of the effect for a layer. Throws Refusal as Numbers.
    Values ValuesAt(OfxTime time, const LayerPlace& layer) const;

    bool IsAborted() const;

    std::atomic<bool> showsFailure = false;

 private:
    void FindClips();
    void FindParameters();

    OfxImageEffectHandle handle_;
    Properties properties_{};
    OfxParamSetHandle parameterSet_ = nullptr;
    Clip source_;
    Clip texture_;
    Clip output_;
    std::vector<OfxParamHandle> parameters_;
    std::shared_ptr<Drawer> drawer_;
};

inline constexpr char kTextureClipName[] = "Texture";

}  // namespace umbrant::openfx
