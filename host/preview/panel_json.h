// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The panel as the page gets it: what the effect has declared, once, and how the rows are now, with every change.

#include <nlohmann/json.hpp>
#include <string>

#include "host/parameters/param_set.h"
#include "host/session/effect_session.h"

namespace umbrant::host {

/// What names a row in the page's messages: its path, or "#index" where it has none.
std::string RowKey(const ParamRow& row);

/// The declared rows in their order, without the layer of row 0 and the ends of groups: key, kind, depth, range,
/// default, items.
nlohmann::ordered_json DeclaredRows(const ParamSet& params);

/// How each row is now, by its key: name, hidden, disabled, the value as text and as numbers.
nlohmann::ordered_json CurrentRows(const EffectSession& session);

/// The values that differ from the defaults, by their keys, as texts.
nlohmann::ordered_json ChangedValues(const ParamSet& params);

/// A message's bytes. Texts of an effect that are not UTF-8 get a replacement character.
std::string Bytes(const nlohmann::ordered_json& json);

}  // namespace umbrant::host
