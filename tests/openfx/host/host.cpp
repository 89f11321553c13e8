// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The host's own record: handles, running actions, suites and messages.

#include "tests/openfx/host/host.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "tests/openfx/host/suites/suites.h"

namespace umbrant::ofx {

namespace {

Host* current = nullptr;
thread_local const RunningAction* running = nullptr;

/// No address of this form exists, so that reading through a handle is a crash.
constexpr std::uintptr_t kFirstHandle = 0x0fc5'0000'0000'0001;
constexpr std::uintptr_t kHandleStep = 2;

/// Strings that this thread was given. They are overwritten at its next call and freed later.
struct TemporaryStrings {
    std::array<std::vector<std::unique_ptr<std::string>>, 8> generations;
    std::size_t now = 0;

    void Invalidate() {
        for (const auto& text : generations[now]) std::fill(text->begin(), text->end(), '?');
        now = (now + 1) % generations.size();
        generations[now].clear();
    }
};
thread_local TemporaryStrings temporaryStrings;

const void* FetchSuiteOfCurrent(OfxPropertySetHandle host, const char* name, int version) {
    return current == nullptr ? nullptr : current->FetchSuite(host, name, version);
}

void PutHostProperties(PropertySet& set, const HostOptions& options) {
    const auto put = [&](const char* name, std::vector<PropertyValue> values) { set.Put(name, std::move(values)); };
    put("OfxPropAPIVersion", {1, 4});
    put("OfxPropType", {"OfxTypeImageEffectHost"});
    put("OfxPropName", {"test.strict_host"});
    put("OfxPropLabel", {"Strict host"});
    put("OfxPropVersion", {1, 0, 0});
    put("OfxPropVersionLabel", {"1.0"});
    put("OfxImageEffectHostPropIsBackground", {options.background ? 1 : 0});
    put("OfxImageEffectPropSupportsOverlays", {0});
    put("OfxImageEffectPropSupportsMultiResolution", {options.multiResolution ? 1 : 0});
    put("OfxImageEffectPropSupportsTiles", {1});
    put("OfxImageEffectPropTemporalClipAccess", {1});
    put("OfxImageEffectPropMultipleClipDepths", {0});
    put("OfxImageEffectPropSupportsMultipleClipPARs", {0});
    put("OfxImageEffectPropSupportedComponents", {"OfxImageComponentRGBA", "OfxImageComponentAlpha"});
    put("OfxImageEffectPropSupportedContexts", {"OfxImageEffectContextFilter", "OfxImageEffectContextGeneral"});
    put("OfxParamHostPropSupportsBooleanAnimation", {options.animatesChoices ? 1 : 0});
    put("OfxParamHostPropSupportsChoiceAnimation", {options.animatesChoices ? 1 : 0});
    put("OfxParamHostPropSupportsStringAnimation", {0});
    put("OfxParamHostPropMaxParameters", {-1});
    put("OfxParamHostPropMaxPages", {0});
    put("OfxParamHostPropPageRowColumnCount", {0, 0});
    put("OfxImageEffectHostPropNativeOrigin", {"kOfxImageEffectHostPropNativeOriginBottomLeft"});
}

}  // namespace

Object::Object(Host& host) : host_(host), number_(0) {
    host.Add(*this, number_);
}
Object::~Object() {
    host_.Remove(number_);
}

Host::Host(HostOptions options) : options_(std::move(options)), next_(kFirstHandle) {
    if (current != nullptr) throw std::logic_error("a second host");
    current = this;
    properties_ = std::make_unique<PropertySet>(*this, PropertySetKind{"the host", {"host descriptor"}});
    PutHostProperties(*properties_, options_);
    struct_ = {properties_->As<OfxPropertySetHandle>(), FetchSuiteOfCurrent};
}

Host::~Host() {
    properties_.reset();
    current = nullptr;
}

Host* Host::Current() {
    return current;
}

bool Host::Lacks(const PropertyRow& row) const {
    if (options_.missing.contains(std::string(row.name))) return true;
    if (row.since == "extension") return !options_.extensions;
    return options_.minimal && (row.hostMayLackIt || row.since != "<=1.1");
}

const void* Host::FetchSuite(OfxPropertySetHandle host, const char* name, int version) {
    if (Enter("fetchSuite") != kOfxStatOK) return nullptr;
    if (host != struct_.host) {
        record.Violation("fetchSuite was called with another handle than the host's");
        return nullptr;
    }
    if (name == nullptr) {
        record.Violation("fetchSuite was called without a name");
        return nullptr;
    }
    const std::string versioned = std::string(name) + "/" + std::to_string(version);
    if (options_.absentSuites.contains(name) || options_.absentSuites.contains(versioned)) return nullptr;
    return SuiteNamed(name, version);
}

OfxStatus Host::Enter(const char* function) {
    temporaryStrings.Invalidate();
    {
        const std::lock_guard lock(mutex_);
        if (running_ == 0) record.Violation(std::string(function) + " was called while no action runs");
    }
    return record.Count(function).value_or(kOfxStatOK);
}

char* Host::TemporaryString(const std::string& text) {
    auto& texts = temporaryStrings.generations[temporaryStrings.now];
    texts.push_back(std::make_unique<std::string>(text));
    return texts.back()->data();
}

const RunningAction* Host::Action() {
    return running;
}

bool Host::InRender() const {
    return running != nullptr && running->name == "OfxImageEffectActionRender";
}

void Host::Add(Object& object, std::uintptr_t& number) {
    const std::lock_guard lock(mutex_);
    number = next_;
    next_ += kHandleStep;
    objects_[number] = &object;
}

void Host::Remove(std::uintptr_t number) {
    const std::lock_guard lock(mutex_);
    objects_.erase(number);
}

Object* Host::Lookup(const void* handle) const {
    const std::lock_guard lock(mutex_);
    const auto found = objects_.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == objects_.end() ? nullptr : found->second;
}

void Host::BadHandle(const void* handle, const char* function, const char* kind) {
    const char* what = handle == nullptr ? " was called with a null handle instead of "
                                         : " was called with a handle that is not (or no longer) ";
    record.Violation(std::string(function) + what + kind);
}

void Host::AddMessage(Message message) {
    const std::lock_guard lock(mutex_);
    messages_.push_back(std::move(message));
}

std::vector<Message> Host::Messages() const {
    const std::lock_guard lock(mutex_);
    return messages_;
}

ActionScope::ActionScope(Host& host, RunningAction action) : host_(host), action_(std::move(action)), outer_(running) {
    running = &action_;
    const std::lock_guard lock(host_.mutex_);
    ++host_.running_;
}

ActionScope::~ActionScope() {
    running = outer_;
    const std::lock_guard lock(host_.mutex_);
    --host_.running_;
}

}  // namespace umbrant::ofx
