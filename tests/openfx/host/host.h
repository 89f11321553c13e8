// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A strict host for image effects: it answers a plug-in's calls by the standard's tables, and keeps a sentence for each
// thing that the plug-in does against them. One host exists at a time, because suite functions without a handle must
// find it.

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "tests/openfx/host/property_set.h"
#include "tests/openfx/host/record.h"

namespace umbrant::ofx {

struct HostOptions {
    /// Lacks every property that is newer than version 1.1 of the standard or that hosts may lack.
    bool minimal = false;
    /// Properties that no object of this host has.
    std::set<std::string> missing{};
    /// Clips have the property of a known extension, the order of a pixel's channels.
    bool extensions = false;
    /// Suites that are absent: "OfxMessageSuite", or "OfxMessageSuite/2" for one version.
    std::set<std::string> absentSuites{};
    /// False: all images have the project's size and begin at (0, 0).
    bool multiResolution = true;
    bool background = false;
    bool animatesChoices = true;
    double projectWidth = 64;
    double projectHeight = 48;
};

/// A message that a plug-in sent.
struct Message {
    std::string type;
    std::string text;
    bool persistent = false;
};

/// The action that runs on a thread.
struct RunningAction {
    std::string name;
    const void* job = nullptr;  ///< the frame of a render
};

class Host {
 public:
    explicit Host(HostOptions options = {});
    ~Host();
    Host(const Host&) = delete;

    /// The host that exists; null if there is none.
    static Host* Current();

    OfxHost* Struct() { return &struct_; }
    const HostOptions& Options() const { return options_; }
    /// True if the options say that no object has the property.
    bool Lacks(const PropertyRow& row) const;

    const void* FetchSuite(OfxPropertySetHandle host, const char* name, int version);

    /// Begins a suite function: counts it, checks that an action is running, and makes the strings of this thread's
    /// earlier calls invalid. Returns the status of an intended failure, otherwise OK.
    OfxStatus Enter(const char* function);
    /// The live object of a handle; null, and a violation, if there is no such object.
    template <typename T>
    T* Find(const void* handle, const char* function, const char* kind) {
        T* object = dynamic_cast<T*>(Lookup(handle));
        if (object == nullptr) BadHandle(handle, function, kind);
        return object;
    }
    /// Memory of the host with this text; valid until the next call of this thread.
    static char* TemporaryString(const std::string& text);

    /// The innermost action of this thread; null if there is none. It may be another thread's that runs.
    static const RunningAction* Action();
    bool InRender() const;

    void Add(Object& object, std::uintptr_t& number);
    void Remove(std::uintptr_t number);

    void AddMessage(Message message);
    std::vector<Message> Messages() const;

    Record record;

 private:
    friend class ActionScope;

    Object* Lookup(const void* handle) const;
    void BadHandle(const void* handle, const char* function, const char* kind);

    HostOptions options_;
    mutable std::mutex mutex_;
    std::map<std::uintptr_t, Object*> objects_;
    std::uintptr_t next_ = 0;
    int running_ = 0;
    std::vector<Message> messages_;
    std::unique_ptr<PropertySet> properties_;
    OfxHost struct_{};
};

/// Marks this thread as running an action.
class ActionScope {
 public:
    ActionScope(Host& host, RunningAction action);
    ~ActionScope();
    ActionScope(const ActionScope&) = delete;

 private:
    Host& host_;
    RunningAction action_;
    const RunningAction* outer_;
};

}  // namespace umbrant::ofx
