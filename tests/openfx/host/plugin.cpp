// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Loads a binary and calls its entry point.

#include "tests/openfx/host/plugin.h"

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

namespace umbrant::ofx {

namespace {

/// Umbrant.ofx.bundle has its binary in Contents/Linux-x86-64/Umbrant.ofx.
std::filesystem::path BinaryOf(const std::filesystem::path& file) {
    if (file.extension() != ".bundle") return file;
    return file / "Contents" / "Linux-x86-64" / file.stem();
}

template <typename Function>
Function Symbol(void* library, const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
}

}  // namespace

bool Succeeded(OfxStatus status) {
    return status == kOfxStatOK || status == kOfxStatReplyDefault;
}

std::unique_ptr<PlugIn> PlugIn::Open(Host& host, const std::filesystem::path& file, std::string& error) {
    void* library = dlopen(BinaryOf(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        error = "'" + file.string() + "' cannot be loaded: " + dlerror();
        return nullptr;
    }
    std::unique_ptr<PlugIn> plugIn(new PlugIn(host, library, file));
    if (!plugIn->Find(error)) return nullptr;
    return plugIn;
}

PlugIn::PlugIn(Host& host, void* library, std::filesystem::path bundle)
    : host_(host), library_(library), bundle_(std::move(bundle)) {}

PlugIn::~PlugIn() {
    descriptor_.reset();
    contexts_.clear();
    dlclose(library_);
}

bool PlugIn::Find(std::string& error) {
    const auto count = Symbol<int (*)()>(library_, "OfxGetNumberOfPlugins");
    const auto get = Symbol<OfxPlugin* (*)(int)>(library_, "OfxGetPlugin");
    if (count == nullptr || get == nullptr) {
        error = "'" + bundle_.string() + "' does not export OfxGetNumberOfPlugins and OfxGetPlugin.";
        return false;
    }
    if (const auto setHost = Symbol<OfxStatus (*)(const OfxHost*)>(library_, "OfxSetHost"); setHost != nullptr) {
        const OfxStatus status = setHost(host_.Struct());
        if (status != kOfxStatOK) {
            error = "'" + bundle_.string() + "' refused the host: OfxSetHost answered " + StatusName(status) + ".";
            return false;
        }
    }
    struct_ = count() > 0 ? get(0) : nullptr;
    if (struct_ == nullptr) {
        error = "'" + bundle_.string() + "' has no plug-in.";
        return false;
    }
    Record& record = host_.record;
    if (get(0) != struct_) record.Violation("OfxGetPlugin returned another pointer at its second call");
    const auto text = [](const char* name) { return std::string(name == nullptr ? "" : name); };
    if (text(struct_->pluginApi) != "OfxImageEffectPluginAPI") {
        record.Violation("OfxPlugin: pluginApi is '" + text(struct_->pluginApi) + "', not OfxImageEffectPluginAPI");
    }
    if (struct_->apiVersion != 1) {
        record.Violation("OfxPlugin: apiVersion is " + std::to_string(struct_->apiVersion) + ", not 1");
    }
    const std::string identifier = text(struct_->pluginIdentifier);
    const auto odd = [](unsigned char c) { return c <= ' ' || c >= 0x7f || c == ':'; };
    if (identifier.empty() || std::any_of(identifier.begin(), identifier.end(), odd)) {
        record.Violation("OfxPlugin: pluginIdentifier '" + identifier + "' is not a plain name");
    }
    if (struct_->setHost == nullptr || struct_->mainEntry == nullptr) {
        error = "'" + bundle_.string() + "' has no setHost or no mainEntry.";
        return false;
    }
    struct_->setHost(host_.Struct());
    return true;
}

OfxStatus PlugIn::Call(const std::string& action, const Object* handle, const PropertySet* in, const PropertySet* out,
                       const void* job) {
    const ActionScope scope(host_, {action, job});
    OfxStatus status = kOfxStatFailed;
    try {
        status = struct_->mainEntry(action.c_str(), handle == nullptr ? nullptr : handle->Number(),
                                    in == nullptr ? nullptr : in->As<OfxPropertySetHandle>(),
                                    out == nullptr ? nullptr : out->As<OfxPropertySetHandle>());
    } catch (const std::exception& thrown) {
        host_.record.Violation(action + ": an exception left the entry point: " + thrown.what());
        return kOfxStatFailed;
    } catch (...) {
        host_.record.Violation(action + ": an exception left the entry point");
        return kOfxStatFailed;
    }
    CheckAnswer(action, status);
    return status;
}

void PlugIn::CheckAnswer(const std::string& action, OfxStatus status) {
    const ActionRow* row = FindAction(action);
    if (row == nullptr) {
        if (status != kOfxStatReplyDefault) {
            host_.record.Violation("the unknown action " + action + " was answered with " + StatusName(status) +
                                   " instead of ReplyDefault");
        }
        return;
    }
    const std::vector<std::string> answers = Split(row->answers, ", ");
    if (status == kOfxStatErrFatal || std::find(answers.begin(), answers.end(), StatusName(status)) == answers.end()) {
        host_.record.Violation(action + " was answered with " + StatusName(status) + "; its answers are " +
                               std::string(row->answers));
    }
}

OfxStatus PlugIn::Load() {
    if (loaded_) throw std::logic_error("loaded twice");
    const OfxStatus status = Call("OfxActionLoad", nullptr, nullptr, nullptr);
    loaded_ = Succeeded(status);
    return status;
}

OfxStatus PlugIn::Describe() {
    if (!loaded_) throw std::logic_error("describe before load");
    descriptor_ = std::make_unique<EffectObject>(host_, EffectKind::kDescriptor, "the effect's descriptor");
    descriptor_->Properties().Put("OfxPluginPropFilePath", {bundle_.string()});
    const OfxStatus status = Call("OfxActionDescribe", descriptor_.get(), nullptr, nullptr);
    described_ = status == kOfxStatOK;
    if (described_ && !host_.record.HasFaults()) CheckDescriptor(*descriptor_);
    return status;
}

OfxStatus PlugIn::DescribeInContext(const std::string& context) {
    if (!described_) throw std::logic_error("describe in context before describe");
    auto effect = std::make_unique<EffectObject>(host_, EffectKind::kContext, "the descriptor of " + context);
    effect->Properties().CopyFrom(descriptor_->Properties());
    effect->Properties().Put("OfxImageEffectPropContext", {context});
    PropertySet in(host_, {"the arguments of OfxImageEffectActionDescribeInContext", {"inArgs"}});
    in.Put("OfxImageEffectPropContext", {context});
    const OfxStatus status = Call("OfxImageEffectActionDescribeInContext", effect.get(), &in, nullptr);
    if (status == kOfxStatOK) {
        if (!host_.record.HasFaults()) CheckContext(*effect, context);
        contexts_[context] = std::move(effect);
    }
    return status;
}

OfxStatus PlugIn::Start() {
    if (const OfxStatus status = Load(); !Succeeded(status)) return status;
    if (const OfxStatus status = Describe(); status != kOfxStatOK) return status;
    for (const std::string& context : descriptor_->Properties().Strings("OfxImageEffectPropSupportedContexts")) {
        if (context != kFilter && context != kGeneral) continue;
        if (const OfxStatus status = DescribeInContext(context); status != kOfxStatOK) return status;
    }
    return kOfxStatOK;
}

OfxStatus PlugIn::Unload() {
    if (instances > 0) throw std::logic_error("unload with instances");
    descriptor_.reset();
    contexts_.clear();
    const OfxStatus status = Call("OfxActionUnload", nullptr, nullptr, nullptr);
    loaded_ = described_ = false;
    for (const auto& [kind, count] : host_.record.OpenCounts()) {
        host_.record.Violation("OfxActionUnload: " + std::to_string(count) + " of " + kind + " not given back");
    }
    return status;
}

EffectObject* PlugIn::Context(const std::string& context) const {
    const auto found = contexts_.find(context);
    return found == contexts_.end() ? nullptr : found->second.get();
}

}  // namespace umbrant::ofx
