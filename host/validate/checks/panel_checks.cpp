// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 5, the panel: changes of rows that are not there, and events of every kind and shape.

#include <fmt/format.h>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// The values of all rows, as panel commands get them.
struct Rows {
    explicit Rows(const EffectSession& session) {
        for (int i = 0; i < session.Params().Count(); ++i) {
            defs.push_back(session.Params().CheckOut(i, session.PanelGeometry()));
        }
        for (PF_ParamDef& def : defs) pointers.push_back(&def);
    }
    std::vector<PF_ParamDef> defs;
    std::vector<PF_ParamDef*> pointers;
};

void ChangesAnyRow(CheckRun& part) {
    CheckFixture fixture(part);
    const int count = fixture.Session().Params().Count();
    std::vector<A_long> indices{-1, kLowest, kHighest};
    for (int index = 0; index <= count + 5; ++index) indices.push_back(index);
    for (const A_long index : indices) {
        // Pressing a button may open a page in a browser.
        const bool known = index >= 0 && index < count;
        if (known && KindOf(fixture.Session().Params().Row(index).def) == ParamKind::kButton) continue;
        Rows rows(fixture.Session());
        PF_UserChangedParamExtra extra{index};
        const CommandRecord record =
            fixture.Session().Send(PF_Cmd_USER_CHANGED_PARAM, rows.pointers.data(), nullptr, &extra);
        if (record.error && known)
            part.Fail(fmt::format("a change of row #{} is answered with {}", index, record.error));
        if (!record.balance.IsBalanced()) {
            part.Fail(fmt::format("a change of row #{} leaves {} open", index, record.balance.Text()));
        }
    }
}

void UpdatesInEveryStyle(CheckRun& part) {
    CheckFixture fixture(part);
    for (const Variant& variant : StyleVariants(fixture.Session().Params(), 20)) {
        variant.apply(fixture.Session().Params());
        if (const auto updated = fixture.Session().UpdateParamsUI(); !updated) {
            part.Fail(fmt::format("{}: {}", variant.name, updated.error().sentence));
        }
    }
    fixture.EndBalanced("after updates of the panel");
}

void TakesEveryEvent(CheckRun& part) {
    CheckFixture fixture(part);
    const PF_UnionableRect frames[] = {{100, 0, 300, 120},   {0, 0, 0, 0},
                                       {300, 120, 100, 0},   {-500, -500, -10, -10},
                                       {0, 0, 30000, 30000}, {kLowest, kLowest, kHighest, kHighest}};
    const std::vector<int> own = SelfDrawnRows(fixture.Session());
    std::vector<int> rows = own;
    rows.insert(rows.end(), {-1, 0, fixture.Session().Params().Count() + 5});
    for (const int row : rows) {
        UnseenCanvas canvas;
        for (PF_EventType type = PF_Event_NONE; type <= PF_Event_NUM_EVENTS; ++type) {
            for (const PF_UnionableRect& frame : frames) {
                PF_EventExtra event = canvas.Event(type, row, frame);
                const auto sent = fixture.Session().SendEvent(&event);
                const bool usual = std::find(own.begin(), own.end(), row) != own.end() && &frame == &frames[0];
                if (!sent && usual) part.Fail(fmt::format("event {}: {}", type, sent.error().sentence));
                // Saying that an idle moment was handled keeps the host from handling it, and wakes it at once.
                const bool nothing = type == PF_Event_NONE || type == PF_Event_IDLE || type == PF_Event_NUM_EVENTS;
                if (nothing && (event.evt_out_flags & PF_EO_HANDLED_EVENT)) {
                    part.Fail(fmt::format("event {}, in which nothing happens, is reported as handled", type));
                }
            }
        }
    }
    fixture.EndBalanced("after events");
}

void BearsItsPanel(CheckRun& run) {
    RunSubChecks(run, {{"with changes of any row", ChangesAnyRow},
                       {"with the panel in every style", UpdatesInEveryStyle},
                       {"with events of every kind", TakesEveryEvent}});
}

}  // namespace

std::vector<Check> PanelChecks() {
    return {{"5.9", "it handles every change and event of its panel", BearsItsPanel}};
}

}  // namespace umbrant::host
