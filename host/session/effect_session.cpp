// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// A session's calls: its life, the panel, what it knows. Its steps are in session_steps.cpp, frames in frame.cpp.

#include "host/session/effect_session.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "host/session/remote_session.h"
#include "host/session/session_state.h"
#include "host/session/session_steps.h"
#include "host/suites/aegp/tokens.h"

namespace umbrant::host {

namespace {

/// The current values as panel commands get them: definitions whose change flags are clear, and a list of pointers.
struct PanelParams {
    explicit PanelParams(const SessionState& state) {
        for (int i = 0; i < state.params.Count(); ++i) {
            defs.push_back(state.params.CheckOut(i, state.PanelGeometry()));
            defs.back().uu.change_flags = PF_ChangeFlag_NONE;
        }
        for (PF_ParamDef& def : defs) pointers.push_back(&def);
    }

    /// Takes over the values that the effect says it has changed.
    void TakeBack(SessionState& state) const {
        for (int i = 0; i < state.params.Count(); ++i) {
            const PF_ParamDef& def = defs[static_cast<std::size_t>(i)];
            if (def.uu.change_flags & PF_ChangeFlag_CHANGED_VALUE) {
                state.params.TakeValue(i, def, state.PanelGeometry());
            }
        }
    }

    std::vector<PF_ParamDef> defs;
    std::vector<PF_ParamDef*> pointers;
};

Result<Done> SendPanelCommand(SessionState& state, PF_Cmd command, void* extra) {
    PanelParams params(state);
    const Answer answer = SendCommand(state, command, nullptr, params.pointers.data(), extra);
    if (answer.Failed()) return FailureOf(state, answer);
    params.TakeBack(state);
    return Done{};
}

}  // namespace

EffectSession::EffectSession(std::unique_ptr<SessionState> state) : state_(std::move(state)) {}
EffectSession::EffectSession(std::unique_ptr<RemoteSession> remote) : remote_(std::move(remote)) {}
EffectSession::EffectSession(EffectSession&&) noexcept = default;

EffectSession& EffectSession::operator=(EffectSession&& other) noexcept {
    if (this != &other) {
        const EffectSession ended(std::move(*this));
        state_ = std::move(other.state_);
        remote_ = std::move(other.remote_);
    }
    return *this;
}

EffectSession::~EffectSession() {
    if (!state_) return;
    SetDown(*state_);
    DropTokens(&state_->services);
}

EffectSession EffectSession::Over(std::unique_ptr<RemoteSession> remote) {
    return EffectSession(std::move(remote));
}

EffectSession EffectSession::Create(const Module& module, SessionOptions options) {
    return EffectSession(std::make_unique<SessionState>(module, std::move(options)));
}

Result<Done> EffectSession::SetUp() {
    state_->params = ParamSet();
    if (std::optional<Failure> failure = SetUpAll(*state_)) return *failure;
    return Done{};
}

Result<EffectSession> EffectSession::Start(const Module& module, SessionOptions options) {
    EffectSession session = Create(module, std::move(options));
    if (const Result<Done> done = session.SetUp(); !done) return done.error();
    return session;
}

Result<EffectSession> EffectSession::StartInstance(const EffectSession& first, std::optional<SessionOptions> options) {
    if (first.remote_) {
        auto another = TRY(first.remote_->StartInstance(options));
        return Over(std::move(another));
    }
    const SessionState& from = *first.state_;
    auto state =
        std::make_unique<SessionState>(from.module, options ? std::move(*options) : SessionOptions(from.options));
    state->globalData = from.globalData;
    state->outFlags = from.outFlags;
    state->outFlags2 = from.outFlags2;
    state->effectVersion = from.effectVersion;
    state->customUIs = from.customUIs;
    state->params = from.params;
    state->declaredRows = from.declaredRows;
    state->services.panel.Reset(DeclaredPanel(state->params));
    state->services.renderer = from.services.renderer.load();
    state->services.leavesLayersAlone = from.services.leavesLayersAlone.load();
    if (std::optional<Failure> failure = SetUpInstance(*state)) return *failure;
    return EffectSession(std::move(state));
}

Result<Done> EffectSession::End() {
    if (remote_) return remote_->End();
    if (std::optional<Failure> failure = SetDown(*state_)) return *failure;
    return Done{};
}

Result<std::string> EffectSession::About() {
    if (remote_) return remote_->About();
    const Answer answer = SendCommand(*state_, PF_Cmd_ABOUT, nullptr, nullptr, nullptr);
    if (answer.Failed()) return FailureOf(*state_, answer);
    return answer.record.message;
}

Result<Done> EffectSession::UpdateParamsUI() {
    if (remote_) return remote_->UpdateParamsUI();
    if (!(state_->outFlags & PF_OutFlag_SEND_UPDATE_PARAMS_UI)) return Done{};
    return SendPanelCommand(*state_, PF_Cmd_UPDATE_PARAMS_UI, nullptr);
}

Result<Done> EffectSession::UserChangedParam(int index) {
    if (remote_) return remote_->UserChangedParam(index);
    if (index < 0 || index >= state_->params.Count()) {
        return Failure{ErrorKind::kUsage, fmt::format("there is no parameter #{}", index)};
    }
    PF_UserChangedParamExtra extra{index};
    return SendPanelCommand(*state_, PF_Cmd_USER_CHANGED_PARAM, &extra);
}

bool EffectSession::WantsPanelEvents() const {
    const auto& registered = state_->customUIs;
    return std::any_of(registered.begin(), registered.end(),
                       [](const PF_CustomUIInfo& info) { return (info.events & PF_CustomEFlag_EFFECT) != 0; });
}

Result<Done> EffectSession::SendEvent(PF_EventExtra* event) {
    event->cbs = kEventCallbacks;
    return SendPanelCommand(*state_, PF_Cmd_EVENT, event);
}

bool EffectSession::SetTwirl(int index, bool collapsed) {
    if (remote_) return remote_->SetTwirl(index, collapsed);
    return state_->services.panel.SetCollapsed(index, collapsed);
}

void EffectSession::SetRenderer(UMBRANT_Renderer renderer) {
    if (remote_) return remote_->SetRenderer(renderer);
    state_->services.renderer = renderer;
}

CommandRecord EffectSession::Send(PF_Cmd command, PF_ParamDef* params[], PF_LayerDef* output, void* extra) {
    return SendCommand(*state_, command, nullptr, params, extra, output).record;
}

Result<PreRendered> EffectSession::PreRender(const FrameRequest& request) {
    if (remote_) return remote_->PreRender(request);
    return PreRenderFrame(*state_, request);
}

Result<Frame> EffectSession::Render(const FrameRequest& request) {
    if (remote_) return remote_->Render(request);
    return RenderFrame(*state_, request);
}

ParamSet& EffectSession::Params() {
    if (remote_) return remote_->Params();
    return state_->params;
}

const ParamSet& EffectSession::Params() const {
    if (remote_) return remote_->Params();
    return state_->params;
}

const PanelState& EffectSession::Panel() const {
    if (remote_) return remote_->Panel();
    return state_->services.panel;
}

LayerGeometry EffectSession::PanelGeometry() const {
    if (remote_) return remote_->PanelGeometry();
    return state_->PanelGeometry();
}

PF_OutFlags EffectSession::OutFlags() const {
    if (remote_) return remote_->OutFlags();
    return state_->outFlags;
}

PF_OutFlags2 EffectSession::OutFlags2() const {
    if (remote_) return remote_->OutFlags2();
    return state_->outFlags2;
}

A_u_long EffectSession::EffectVersion() const {
    if (remote_) return remote_->EffectVersion();
    return state_->effectVersion;
}

Balance EffectSession::Open() const {
    if (remote_) return remote_->Open();
    return state_->services.tally.Snapshot();
}

std::vector<std::string> EffectSession::Misbehaviour() const {
    if (remote_) return remote_->Misbehaviour();
    return state_->services.Misbehaviour();
}

std::vector<std::string> EffectSession::AcquiredSuites() const {
    if (remote_) return remote_->AcquiredSuites();
    return state_->services.acquired.Names();
}

std::vector<std::string> EffectSession::RefusedSuites() const {
    if (remote_) return remote_->RefusedSuites();
    return state_->services.refused.Names();
}

std::optional<Activity> EffectSession::Now() const {
    if (remote_) return remote_->Now();
    const std::lock_guard lock(state_->runningMutex);
    if (state_->running.empty()) return std::nullopt;
    const SessionState::Running& first = state_->running.front();
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - first.begin;
    return Activity{first.command, first.notes->stages.Now(), taken.count()};
}

std::vector<CommandRecord> EffectSession::Commands() const {
    if (remote_) return remote_->Commands();
    const std::lock_guard lock(state_->commandsMutex);
    return {state_->commands.begin(), state_->commands.end()};
}

}  // namespace umbrant::host
