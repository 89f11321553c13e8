// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/suites/services.h"

#include <algorithm>

#include "host/process/fork_lock.h"

namespace umbrant::host {

namespace {

/// The sessions that live, in the order in which they began.
struct Registry {
    ForkLock mutex{ForkRank::kRecord};
    std::vector<Services*> sessions;
    std::set<const void*> effectRefs;
};

// Kept: never destroyed, because an effect's threads may still ask for their session while the program ends.
Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}
[[maybe_unused]] const Registry& earlyRegistry = TheRegistry();  // before there are threads: see fork_lock.h

thread_local std::pair<Services*, CommandNotes*> current;

}  // namespace

Balance Tally::Snapshot() const {
    Balance balance;
    std::copy(open_.begin(), open_.end(), balance.open.begin());
    return balance;
}

void SuiteLog::Note(const std::string& suite) {
    const std::lock_guard lock(mutex_);
    names_.insert(suite);
}

std::vector<std::string> SuiteLog::Names() const {
    const std::lock_guard lock(mutex_);
    return {names_.begin(), names_.end()};
}

Services::Services() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    registry.sessions.push_back(this);
}

Services::~Services() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    std::erase(registry.sessions, this);
}

void Services::Report(std::string sentence) {
    const std::lock_guard lock(mutex_);
    misbehaviour_.push_back(std::move(sentence));
}

std::vector<std::string> Services::Misbehaviour() const {
    const std::lock_guard lock(mutex_);
    return misbehaviour_;
}

ServiceScope::ServiceScope(Services* services, CommandNotes* notes) : outer_(current) {
    current = {services, notes};
}

ServiceScope::~ServiceScope() {
    current = outer_;
}

std::pair<Services*, CommandNotes*> ServiceScope::Current() {
    return current;
}

Services* CurrentServices() {
    if (current.first) return current.first;
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    return registry.sessions.empty() ? nullptr : registry.sessions.back();
}

EventLog* CurrentEventLog() {
    const Services* services = CurrentServices();
    return services ? services->log : nullptr;
}

std::uint64_t CurrentCommandEvent() {
    return current.second ? current.second->event : 0;
}

void Count(Resource resource, int amount) {
    if (Services* services = CurrentServices()) services->tally.Add(resource, amount);
    if (current.second) current.second->tally.Add(resource, amount);
}

void Report(std::string sentence) {
    if (Services* services = CurrentServices()) services->Report(std::move(sentence));
}

PF_Err FaultOf(std::string_view call) {
    const Services* services = CurrentServices();
    return services && services->fault ? services->fault(call) : PF_Err_NONE;
}

EffectRef::EffectRef(Services* owner, FrameRecord* record) : services(owner), frame(record) {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    registry.effectRefs.insert(this);
}

EffectRef::~EffectRef() {
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    registry.effectRefs.erase(this);
}

EffectRef* EffectRef::Of(PF_ProgPtr pointer, const char* call) {
    {
        Registry& registry = TheRegistry();
        const std::lock_guard lock(registry.mutex);
        if (registry.effectRefs.contains(pointer)) return reinterpret_cast<EffectRef*>(pointer);
    }
    Report(std::string(call) + " was called with an invalid effect reference");
    return nullptr;
}

}  // namespace umbrant::host
