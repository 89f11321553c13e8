// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// An effect: its descriptor, the descriptor of a context, or an instance, with clips and parameters.

#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tests/openfx/host/param.h"
#include "tests/openfx/host/property_set.h"

namespace umbrant::ofx {

enum class EffectKind { kDescriptor, kContext, kInstance };

class EffectObject;
class FrameJob;

class Clip : public Object {
 public:
    Clip(Host& host, EffectObject& effect, std::string name, bool instance);

    const std::string& Name() const { return name_; }
    EffectObject& Effect() const { return effect_; }
    PropertySet& Properties() { return properties_; }
    /// The region of the clip's images in canonical coordinates.
    OfxRectD region{};
    bool connected = false;

 private:
    EffectObject& effect_;
    std::string name_;
    PropertySet properties_;
};

class EffectObject : public Object {
 public:
    EffectObject(Host& host, EffectKind kind, const std::string& label);

    EffectKind Kind() const { return kind_; }
    PropertySet& Properties() { return properties_; }
    ParamSet& Params() { return params_; }
    const std::vector<std::unique_ptr<Clip>>& Clips() const { return clips_; }
    Clip* FindClip(std::string_view name) const;
    Clip& AddClip(const std::string& name);

    /// The frames of an instance that are being rendered. Suite functions find theirs by the thread's action.
    void Begin(FrameJob& job);
    void End(FrameJob& job);
    FrameJob* JobOfThisThread() const;

 private:
    EffectKind kind_;
    PropertySet properties_;
    ParamSet params_;
    std::vector<std::unique_ptr<Clip>> clips_;
    mutable std::mutex mutex_;
    std::set<FrameJob*> jobs_;
};

/// Memory that imageMemoryAlloc gave.
class ImageMemory : public Object {
 public:
    ImageMemory(Host& host, std::size_t bytes);

    void* Data() { return data_.get(); }
    int locks = 0;

 private:
    std::unique_ptr<std::byte[]> data_;
};

}  // namespace umbrant::ofx
