// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What the parts of PreviewEngine answer with. Inside host/preview only.

#include <nlohmann/json.hpp>
#include <string>

#include "host/compositing/world.h"
#include "host/http/http_server.h"
#include "host/result.h"

namespace umbrant::host {

/// The failure of whatever was drawn when the module was ended on request.
constexpr char kModuleEnded[] = "the module did not answer and was ended; start it again";

/// Rows of red, green, blue, alpha of an 8-bit world; straight.
std::string StraightRgba(const World& world);

HttpReply JsonReply(const nlohmann::ordered_json& json);

/// A failure's sentence: 422 for what the page asked, else 500.
HttpReply Refused(const Failure& failure);

}  // namespace umbrant::host
