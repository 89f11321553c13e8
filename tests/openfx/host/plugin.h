// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A plug-in's binary: loading it, its actions in their order, its descriptors.

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "tests/openfx/host/effect.h"
#include "tests/openfx/host/host.h"

namespace umbrant::ofx {

inline constexpr const char* kFilter = "OfxImageEffectContextFilter";
inline constexpr const char* kGeneral = "OfxImageEffectContextGeneral";

class PlugIn {
 public:
    /// Loads the first plug-in of a binary, or of a bundle's folder, and gives it the host. Null and a sentence if that
    /// fails.
    static std::unique_ptr<PlugIn> Open(Host& host, const std::filesystem::path& file, std::string& error);
    /// Closes the binary. Instances must be gone.
    ~PlugIn();
    PlugIn(const PlugIn&) = delete;

    const OfxPlugin& Struct() const { return *struct_; }
    Host& TheHost() const { return host_; }

    /// The actions of a plug-in's life. Throw std::logic_error where the test calls them in a wrong order.
    OfxStatus Load();
    OfxStatus Describe();
    OfxStatus DescribeInContext(const std::string& context);
    OfxStatus Unload();
    /// Load, Describe and DescribeInContext of every context that both sides have; the first status that is no success.
    OfxStatus Start();

    /// Calls the entry point, and checks the answer. An exception counts as Failed, and as a violation.
    OfxStatus Call(const std::string& action, const Object* handle, const PropertySet* in, const PropertySet* out,
                   const void* job = nullptr);

    EffectObject& Descriptor() const { return *descriptor_; }
    /// Null if the context has not been described.
    EffectObject* Context(const std::string& context) const;
    bool IsLoaded() const { return loaded_; }
    int instances = 0;

 private:
    PlugIn(Host& host, void* library, std::filesystem::path bundle);
    bool Find(std::string& error);
    void CheckAnswer(const std::string& action, OfxStatus status);

    Host& host_;
    void* library_;
    std::filesystem::path bundle_;
    OfxPlugin* struct_ = nullptr;
    bool loaded_ = false;
    bool described_ = false;
    std::unique_ptr<EffectObject> descriptor_;
    std::map<std::string, std::unique_ptr<EffectObject>> contexts_;
};

/// True for OK and ReplyDefault.
bool Succeeded(OfxStatus status);

/// Adds a violation for each thing that a description lacks or says wrongly.
void CheckDescriptor(EffectObject& descriptor);
void CheckContext(EffectObject& context, const std::string& name);

}  // namespace umbrant::ofx
