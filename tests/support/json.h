// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// JSON for tests. The code of the JSON library is compiled once, in json.cpp, and not for each test that reads a
// report; so tests include this header, and read text by these functions: parse of nlohmann::json would compile a
// parser.

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace umbrant::host {

/// The value of a text. Throws nlohmann::json::parse_error where the text is not JSON.
nlohmann::json ParseJson(std::string_view text);

/// The value of a text; a discarded value where the text is not JSON.
nlohmann::json ParseJsonOrDiscard(std::string_view text);

}  // namespace umbrant::host

namespace nlohmann {

/// GoogleTest prints values by it in messages of failures: the text of dump().
void PrintTo(const json& value, std::ostream* stream);

}  // namespace nlohmann

extern template class nlohmann::basic_json<>;
extern template class nlohmann::detail::serializer<nlohmann::json>;
