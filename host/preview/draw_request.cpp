// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/preview/draw_request.h"

#include <nlohmann/json.hpp>

#include "host/render/plan/frame_limits.h"

namespace umbrant::host {

Result<DrawRequest> ReadDrawRequest(const std::string& text) {
    const Failure wrong{ErrorKind::kUsage, "the request for a frame is not in the form that the page sends"};
    // Deep nesting would take the stack.
    const auto shallow = [](int depth, nlohmann::json::parse_event_t, nlohmann::json&) { return depth <= 3; };
    const auto json = nlohmann::json::parse(text, shallow, false);
    if (!json.is_object()) return wrong;
    DrawRequest request;
    const auto number = [&](const char* name, auto& value) {
        const auto found = json.find(name);
        if (found == json.end() || !found->is_number_integer()) return false;
        value = found->get<std::remove_reference_t<decltype(value)>>();
        return true;
    };
    const auto moving = json.find("moving");
    const auto values = json.find("values");
    if (!number("client", request.client) || !number("serial", request.serial) || !number("layer", request.layer) ||
        !number("texture", request.texture) || moving == json.end() || !moving->is_boolean() || values == json.end() ||
        !values->is_object()) {
        return wrong;
    }
    request.moving = moving->get<bool>();
    const auto optional = [&](const char* name, std::string& value) {
        const auto found = json.find(name);
        if (found == json.end()) return true;
        if (found->is_string()) value = found->get<std::string>();
        return found->is_string();
    };
    if (!optional("keyframes", request.keyframes) || !optional("frames", request.frames) ||
        !optional("rate", request.rate) || !optional("canvas", request.canvas) || !optional("format", request.format) ||
        (json.contains("frame") && !number("frame", request.frame)) ||
        (json.contains("downsample") && !number("downsample", request.downsample)) || request.downsample < 0 ||
        request.downsample > kMostDownsample) {
        return wrong;
    }
    for (const auto& [path, value] : values->items()) {
        if (!value.is_string()) return wrong;
        request.values.emplace_back(path, value.get<std::string>());
    }
    return request;
}

}  // namespace umbrant::host
