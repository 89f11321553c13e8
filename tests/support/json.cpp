// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The code of the JSON library that tests share.

#include "tests/support/json.h"

#include <ostream>

template class nlohmann::basic_json<>;
template class nlohmann::detail::serializer<nlohmann::json>;

namespace umbrant::host {

nlohmann::json ParseJson(std::string_view text) {
    return nlohmann::json::parse(text);
}

nlohmann::json ParseJsonOrDiscard(std::string_view text) {
    return nlohmann::json::parse(text, nullptr, false);
}

}  // namespace umbrant::host

namespace nlohmann {

void PrintTo(const json& value, std::ostream* stream) {
    *stream << value;
}

}  // namespace nlohmann
