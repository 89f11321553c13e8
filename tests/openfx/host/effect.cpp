// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The objects behind the handles of effects and clips.

#include "tests/openfx/host/effect.h"

#include <utility>

#include "tests/openfx/host/host.h"
#include "tests/openfx/host/image.h"

namespace umbrant::ofx {

namespace {

PropertySetKind KindOfEffect(EffectKind kind, const std::string& label) {
    if (kind == EffectKind::kInstance) return {label, {"effect instance"}, Access::kSomeWritable};
    return {label, {"effect descriptor"}, Access::kWritable};
}

}  // namespace

Clip::Clip(Host& host, EffectObject& effect, std::string name, bool instance)
    : Object(host),
      effect_(effect),
      name_(std::move(name)),
      properties_(host, {"the clip " + name_,
                         {instance ? "clip instance" : "clip descriptor"},
                         instance ? Access::kReadOnly : Access::kWritable}) {
    properties_.Put("OfxPropType", {"OfxTypeClip"});
    for (const char* label : {"OfxPropName", "OfxPropLabel", "OfxPropShortLabel", "OfxPropLongLabel"}) {
        properties_.Put(label, {name_});
    }
}

EffectObject::EffectObject(Host& host, EffectKind kind, const std::string& label)
    : Object(host),
      kind_(kind),
      properties_(host, KindOfEffect(kind, label)),
      params_(host, "the parameters of " + label, kind == EffectKind::kInstance) {
    properties_.Put("OfxPropType",
                    {kind == EffectKind::kInstance ? "OfxTypeImageEffectInstance" : "OfxTypeImageEffect"});
}

Clip* EffectObject::FindClip(std::string_view name) const {
    for (const auto& clip : clips_) {
        if (clip->Name() == name) return clip.get();
    }
    return nullptr;
}

Clip& EffectObject::AddClip(const std::string& name) {
    clips_.push_back(std::make_unique<Clip>(TheHost(), *this, name, kind_ == EffectKind::kInstance));
    return *clips_.back();
}

void EffectObject::Begin(FrameJob& job) {
    const std::lock_guard lock(mutex_);
    jobs_.insert(&job);
}

void EffectObject::End(FrameJob& job) {
    const std::lock_guard lock(mutex_);
    jobs_.erase(&job);
}

FrameJob* EffectObject::JobOfThisThread() const {
    const std::lock_guard lock(mutex_);
    const RunningAction* action = Host::Action();
    for (FrameJob* job : jobs_) {
        // A thread of the plug-in's own has no action; it can only belong to a frame that is being drawn.
        if (action == nullptr || action->job == job) return job;
    }
    return nullptr;
}

ImageMemory::ImageMemory(Host& host, std::size_t bytes) : Object(host), data_(new std::byte[bytes]) {}

}  // namespace umbrant::ofx
