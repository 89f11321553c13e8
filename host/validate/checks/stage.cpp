// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/stage.h"

#include <fmt/format.h>

#include <utility>

#include "host/accounting/ledger.h"
#include "host/session/error_names.h"

Stage::Stage(Trial& trial, SessionOptions options) : trial_(trial) {
    options.log = &log_;
    auto loaded = Module::Load(trial.Options().module);
    if (!loaded) trial.FailAndEnd(loaded.Error().sentence);
    module_.emplace(std::move(*loaded));
    auto started = EffectSession::Start(*module_, std::move(options));
    if (!started) trial.FailAndEnd(started.Error().sentence);
    session_.emplace(std::move(*started));
}

Stage::~Stage() {
    if (session_) {
        NoteMisbehaviour("");
        session_.reset();
    }
    trial_.KeepEvents(log_);
}

void Stage::Cheapen() {
    ParamSet& params = session_->Params();
    constexpr double kWide = 200;
    constexpr double kSteps = 5;
    for (const int index : SettableRows(params)) {
        ParamRow& row = params.RawRow(index);
        const auto range = RangeOf(row);
        if (KindOf(row.def) == ParamKind::kAngle || !range || range->validMax - range->validMin < kWide) continue;
        SetNumberUnchecked(row, LowNumber(*range, kSteps));
    }
}

std::optional<Frame> Stage::Draw(const FrameRequest& request, const std::string& what) {
    trial_.Count("frames");
    Result<Frame> frame = session_->Render(request);
    if (frame) return std::move(*frame);
    trial_.Fail(fmt::format("{}: {}", what, frame.Error().sentence));
    return std::nullopt;
}

std::optional<PreRendered> Stage::Ask(const FrameRequest& request, const std::string& what) {
    trial_.Count("pre-renders");
    Result<PreRendered> asked = session_->PreRender(request);
    if (asked) return std::move(*asked);
    trial_.Fail(fmt::format("{}: {}", what, asked.Error().sentence));
    return std::nullopt;
}

void Stage::TouchPanel() {
    if (const auto about = session_->About(); !about) trial_.Fail(about.Error().sentence);
    if (const auto updated = session_->UpdateParamsUI(); !updated) trial_.Fail(updated.Error().sentence);
}

void Stage::EndEven(const std::string& when) {
    if (const auto ended = session_->End(); !ended) trial_.Fail(fmt::format("{}: {}", when, ended.Error().sentence));
    NoteMisbehaviour(when);
    for (const LedgerRow& row : UnevenRows(log_.Events())) trial_.Fail(fmt::format("{}: {}", when, row.sentence));
}

void Stage::NoteMisbehaviour(const std::string& when) {
    const std::vector<std::string> sentences = session_->Misbehaviour();
    for (; misbehaviourSeen_ < sentences.size(); ++misbehaviourSeen_) {
        trial_.Fail((when.empty() ? "" : when + ": ") + sentences[misbehaviourSeen_]);
    }
}

void Stage::Forget() {
    static_cast<void>(bool(session_->End()));
    misbehaviourSeen_ = session_->Misbehaviour().size();
}
