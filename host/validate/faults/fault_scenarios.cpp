// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/faults/fault_scenarios.h"

#include <cstring>
#include <utility>

#include "host/accounting/ledger.h"
#include "host/validate/checks/panel_events.h"

namespace umbrant::host {

namespace {

std::uint64_t DrawVariant(FaultFixture& fixture, const Variant& variant, Depth depth) {
    const World layer = TestPicture(24, 20, depth);
    ParamSet params = fixture.fixture.Session().Params();
    variant.apply(params);
    FrameRequest request;
    request.layer = &layer;
    request.params = &params;
    request.texture = &layer;
    request.canvas = Canvas::kLayer;
    const auto frame = fixture.fixture.Session().Render(request);
    return frame ? DigestOf(frame->output) : 0;
}

/// Whether the event is the one that was made to fail: a suite is refused behind the fault hook's own name for it.
bool IsRefused(const Event& event, const FaultPlan& plan) {
    if (event.faulted) return true;
    if (event.callee != "SP Basic Suite.AcquireSuite" || !plan.callee.starts_with("AcquireSuite:")) return false;
    return plan.callee.substr(std::strlen("AcquireSuite:")) == event.arguments.at(0).text &&
           (event.Failed() || event.arguments.at(2).after == 0);
}

}  // namespace

SessionOptions FaultFixture::Options() {
    SessionOptions options;
    options.fault = [this](std::string_view call) { return faults.Ask(call); };
    options.afterCommand = [this](const CommandArguments& sent, PF_Err error) {
        if (!error && !sent.out->return_msg[0]) return;
        const char* text = sent.out->return_msg;
        const void* end = std::memchr(text, '\0', sizeof(sent.out->return_msg));
        if (!end) messageEnded = false;
        lastMessage.assign(text, end ? static_cast<const char*>(end) : text + sizeof(sent.out->return_msg));
    };
    return options;
}

std::vector<FaultScenario> ScenariosOf(FaultFixture& fixture) {
    std::vector<FaultScenario> scenarios;
    bool first = true;
    for (const Variant& variant : StyleVariants(fixture.fixture.Session().Params(), 3)) {
        scenarios.push_back({"a frame with " + variant.name,
                             [variant](FaultFixture& l) { return DrawVariant(l, variant, Depth::k8); }});
        if (std::exchange(first, false)) {
            scenarios.push_back(
                {"a frame at 32 bits", [variant](FaultFixture& l) { return DrawVariant(l, variant, Depth::k32); }});
        }
    }
    scenarios.push_back({"an update of the panel", [](FaultFixture& l) {
                             const auto updated = l.fixture.Session().UpdateParamsUI();
                             return std::uint64_t{updated ? 1u : 0u};
                         }});
    scenarios.push_back({"about", [](FaultFixture& l) {
                             const auto about = l.fixture.Session().About();
                             return std::uint64_t{about ? 1u : 0u};
                         }});
    scenarios.push_back({"draw events", [](FaultFixture& l) {
                             bool well = true;
                             for (const int row : SelfDrawnRows(l.fixture.Session())) {
                                 UnseenCanvas canvas;
                                 PF_EventExtra event = canvas.Event(PF_Event_DRAW, row, {100, 0, 300, 120});
                                 well = bool(l.fixture.Session().SendEvent(&event)) && well;
                             }
                             return std::uint64_t{well ? 1u : 0u};
                         }});
    scenarios.push_back({"set-up and set-down",
                         [](FaultFixture& l) {
                             const auto up = l.fixture.Session().SetUp();
                             if (!up) return std::uint64_t{0};
                             return std::uint64_t{l.fixture.Session().End() ? 2u : 1u};
                         },
                         true});
    return scenarios;
}

FaultOutcome RunScenario(FaultFixture& fixture, const FaultScenario& scenario, const FaultPlan& plan,
                         std::uint64_t* digest) {
    EffectSession& session = fixture.fixture.Session();
    if (scenario.fromDown) static_cast<void>(bool(session.End()));
    const std::size_t seen = session.Misbehaviour().size();
    fixture.fixture.Log().Clear();
    fixture.messageEnded = true;
    fixture.lastMessage.clear();
    fixture.faults.Arm(plan);
    *digest = scenario.run(fixture);
    fixture.faults.Disarm();

    FaultOutcome outcome;
    outcome.plan = plan;
    outcome.scenario = scenario.name;
    outcome.reached = fixture.faults.reached;
    outcome.messageEnded = fixture.messageEnded;
    outcome.message = fixture.lastMessage;
    const std::vector<Event> events = fixture.fixture.Log().Events();
    std::uint64_t command = 0;
    bool refused = false;
    for (const Event& event : events) {
        if (IsRefused(event, plan) && !refused) {
            refused = true;
            command = event.command;
            continue;
        }
        if (refused && event.command == command && !event.isCommand && outcome.laterCall.empty() &&
            !GivesBack(event.callee)) {
            outcome.laterCall = event.callee;
        }
    }
    for (const Event& event : events) {
        if (!event.isCommand || event.sequence != command) continue;
        outcome.command = event.callee;
        outcome.error = static_cast<PF_Err>(event.result);
    }
    // A world or a suite that stays open after a refusal stays open for good; global data of a session that is up is
    // not among these events.
    outcome.uneven = UnevenRows(events);
    const std::vector<std::string> misbehaviour = session.Misbehaviour();
    outcome.misbehaviour.assign(misbehaviour.begin() + static_cast<std::ptrdiff_t>(seen), misbehaviour.end());
    if (scenario.fromDown) static_cast<void>(bool(session.SetUp()));
    return outcome;
}

}  // namespace umbrant::host
