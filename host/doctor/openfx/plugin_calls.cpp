// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/doctor/openfx/plugin_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>

#include "host/doctor/openfx/host_suites.h"

namespace umbrant::host {

namespace {

/// Runs it and returns a description of what it throws; empty for nothing.
template <typename Call>
std::string Thrown(const Call& call) {
    try {
        call();
        return {};
    } catch (const std::exception& problem) {
        return fmt::format("an exception (\"{}\")", problem.what());
    } catch (...) {
        return "an exception";
    }
}

}  // namespace

std::string StatusText(OfxStatus status) {
    static const std::pair<OfxStatus, const char*> names[] = {{kOfxStatOK, "OK"},
                                                              {kOfxStatFailed, "Failed"},
                                                              {kOfxStatErrFatal, "ErrFatal"},
                                                              {kOfxStatErrUnknown, "ErrUnknown"},
                                                              {kOfxStatErrMissingHostFeature, "ErrMissingHostFeature"},
                                                              {kOfxStatErrUnsupported, "ErrUnsupported"},
                                                              {kOfxStatErrExists, "ErrExists"},
                                                              {kOfxStatErrFormat, "ErrFormat"},
                                                              {kOfxStatErrMemory, "ErrMemory"},
                                                              {kOfxStatErrBadHandle, "ErrBadHandle"},
                                                              {kOfxStatErrBadIndex, "ErrBadIndex"},
                                                              {kOfxStatErrValue, "ErrValue"},
                                                              {kOfxStatReplyYes, "ReplyYes"},
                                                              {kOfxStatReplyNo, "ReplyNo"},
                                                              {kOfxStatReplyDefault, "ReplyDefault"},
                                                              {kOfxStatUnlicensed, "Unlicensed"},
                                                              {kOfxStatErrImageFormat, "ErrImageFormat"}};
    for (const auto& [number, name] : names) {
        if (number == status) return fmt::format("{} ({})", name, status);
    }
    return fmt::format("the unknown status {}", status);
}

Failure PluginCalls::Failed(const std::string& what) const {
    const std::string message = TakeMessage();
    return {ErrorKind::kEffect, fmt::format("the plug-in '{}' of '{}' {}{}{}", plugin_.pluginIdentifier, bundle_, what,
                                            message.empty() ? "" : ": ", message)};
}

Result<OfxStatus> PluginCalls::Action(const char* action, const void* handle, PropertySet* in, PropertySet* out,
                                      const std::vector<OfxStatus>& accepted) {
    note_(fmt::format("during {} of '{}'", action, plugin_.pluginIdentifier));
    OfxStatus status = kOfxStatFailed;
    const std::string thrown = Thrown([&] {
        status = plugin_.mainEntry(action, handle, in ? in->Handle() : nullptr, out ? out->Handle() : nullptr);
    });
    if (!thrown.empty()) {
        return Failed(
            fmt::format("throws {} out of {}, which ends most hosts; it has to answer a status", thrown, action));
    }
    if (std::find(accepted.begin(), accepted.end(), status) == accepted.end()) {
        return Failed(fmt::format("answers {} with {}", action, StatusText(status)));
    }
    return status;
}

Result<Done> PluginCalls::SetHost() {
    note_(fmt::format("during setHost of '{}'", plugin_.pluginIdentifier));
    const std::string thrown = Thrown([&] { plugin_.setHost(&DoctorHost()); });
    if (!thrown.empty()) return Failed(fmt::format("throws {} out of setHost, which ends most hosts", thrown));
    return Done{};
}

}  // namespace umbrant::host
