// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/check_fixture.h"

#include <fmt/format.h>

#include <utility>

#include "host/accounting/ledger.h"
#include "host/session/error_names.h"

namespace umbrant::host {

CheckFixture::CheckFixture(CheckRun& run, SessionOptions options) : trial_(run) {
    options.log = &log_;
    auto loaded = Module::Load(run.Options().module);
    if (!loaded) run.FailAndEnd(loaded.error().sentence);
    module_.emplace(std::move(*loaded));
    auto started = EffectSession::Start(*module_, std::move(options));
    if (!started) run.FailAndEnd(started.error().sentence);
    session_.emplace(std::move(*started));
}

CheckFixture::~CheckFixture() {
    if (session_) {
        NoteMisbehaviour("");
        session_.reset();
    }
    trial_.KeepEvents(log_);
}

void CheckFixture::Cheapen() {
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

std::optional<Frame> CheckFixture::Draw(const FrameRequest& request, const std::string& what) {
    trial_.Count("frames");
    Result<Frame> frame = session_->Render(request);
    if (frame) return std::move(*frame);
    trial_.Fail(fmt::format("{}: {}", what, frame.error().sentence));
    return std::nullopt;
}

std::optional<PreRendered> CheckFixture::Ask(const FrameRequest& request, const std::string& what) {
    trial_.Count("pre-renders");
    Result<PreRendered> asked = session_->PreRender(request);
    if (asked) return std::move(*asked);
    trial_.Fail(fmt::format("{}: {}", what, asked.error().sentence));
    return std::nullopt;
}

void CheckFixture::TouchPanel() {
    if (const auto about = session_->About(); !about) trial_.Fail(about.error().sentence);
    if (const auto updated = session_->UpdateParamsUI(); !updated) trial_.Fail(updated.error().sentence);
}

void CheckFixture::EndBalanced(const std::string& when) {
    if (const auto ended = session_->End(); !ended) trial_.Fail(fmt::format("{}: {}", when, ended.error().sentence));
    NoteMisbehaviour(when);
    for (const LedgerRow& row : UnevenRows(log_.Events())) trial_.Fail(fmt::format("{}: {}", when, row.sentence));
}

void CheckFixture::NoteMisbehaviour(const std::string& when) {
    const std::vector<std::string> sentences = session_->Misbehaviour();
    for (; misbehaviourSeen_ < sentences.size(); ++misbehaviourSeen_) {
        trial_.Fail((when.empty() ? "" : when + ": ") + sentences[misbehaviourSeen_]);
    }
}

void CheckFixture::Forget() {
    static_cast<void>(bool(session_->End()));
    misbehaviourSeen_ = session_->Misbehaviour().size();
}

}  // namespace umbrant::host
