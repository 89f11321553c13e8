// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Finds rows of the panel by name: by path or index, buttons also by their label.

#include <string>
#include <string_view>
#include <vector>

#include "host/panel/panel_layout.h"
#include "host/result.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// The index of the button that "#index", its path, its face or its group's path and its face ("about-support/
/// product-page") names; "Product Page" is as good as "product-page". Fails with `ErrorKind::kUsage` and the nearest
/// right names, also for a row that is no button, is disabled, or is hidden by the effect.
Result<int> FindButton(const EffectSession& session, std::string_view name);

/// What Twirl takes: "all", and the paths of the rows that have one.
std::vector<std::string> TwirlNames(const EffectSession& session);

/// Opens or closes the twirl of the row that a path or index names, or with "all" of every row that has one. Fails with
/// `ErrorKind::kUsage` for a row without a twirl.
Result<Done> Twirl(EffectSession& session, std::string_view name, bool open);

}  // namespace umbrant::host
