// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include <umbrant/values.h>

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/library/effect_request.h"
#include "host/library/errors.h"
#include "host/library/value_store.h"
#include "host/parameters/set_row.h"

namespace umbrant {

namespace host {

Result<ParamRow> ValueStore::Find(std::string_view path) const {
    const int index = TRY(base->values.Find(path));
    ParamRow row = base->values.Row(index);
    const auto set = std::find_if(rows.begin(), rows.end(), [&](const SetRow& each) { return each.index == index; });
    if (set != rows.end()) {
        row.def.u = set->u;
        row.point = set->point;
    }
    return row;
}

void ValueStore::Keep(const ParamRow& row) {
    const auto isIt = [&](const SetRow& each) { return each.index == row.index; };
    const auto set = std::find_if(rows.begin(), rows.end(), isIt);
    SetRow& kept = set == rows.end() ? rows.emplace_back() : *set;
    kept = {row.index, row.def.u, row.point};
}

ParamSet ValueStore::At(const FrameOptions& options) const {
    const AnimationClock clock = ClockOf(options);
    ParamSet values = base->animation.ValuesAt(base->values, clock.FrameOf(options.seconds), clock);
    for (const SetRow& row : rows) values.SetValue(row.index, row.u, row.point);
    return values;
}

bool HaveSameRows(const ParamSet& a, const ParamSet& b) {
    return std::equal(a.Rows().begin(), a.Rows().end(), b.Rows().begin(), b.Rows().end(),
                      [](const ParamRow& one, const ParamRow& other) {
                          return one.def.param_type == other.def.param_type && one.path == other.path;
                      });
}

namespace {

std::string PathOf(int row) {
    return fmt::format("#{}", row);
}

}  // namespace

}  // namespace host

using namespace host;

Values::Values(std::unique_ptr<State> state) : state_(std::move(state)) {}
Values::Values(const Values& other) : state_(std::make_unique<State>(*other.state_)) {}
Values::Values(Values&&) noexcept = default;
Values& Values::operator=(const Values& other) {
    state_ = std::make_unique<State>(*other.state_);
    return *this;
}
Values& Values::operator=(Values&&) noexcept = default;
Values::~Values() = default;

void Values::Set(std::string_view path, std::string_view value) {
    ParamRow row = Need(state_->store.Find(path));
    Need(SetRowFromText(row, value));
    state_->store.Keep(row);
}

void Values::Set(std::string_view path, double value) {
    Set(path, fmt::format("{}", value));
}

void Values::Set(std::string_view path, const Color& value) {
    ParamRow row = Need(state_->store.Find(path));
    Need(SetRowColor(row, {value.red, value.green, value.blue}));
    state_->store.Keep(row);
}

void Values::Set(int row, std::string_view value) {
    Set(PathOf(row), value);
}

void Values::Set(int row, double value) {
    Set(PathOf(row), value);
}

void Values::Set(int row, const Color& value) {
    Set(PathOf(row), value);
}

std::string Values::Get(std::string_view path) const {
    return ValueTextOf(Need(state_->store.Find(path)));
}

std::string Values::Get(int row) const {
    return Get(PathOf(row));
}

}  // namespace umbrant
