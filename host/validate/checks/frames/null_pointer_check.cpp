// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/validate/checks/frames/null_pointer_check.h"

#include <fmt/format.h>

#include <cstdio>
#include <functional>
#include <vector>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

/// One command with one pointer taken away.
void SendWithout(CheckRun& part, const char* what, PF_Cmd command, const std::function<void(CommandArguments&)>& take) {
    SessionOptions options;
    bool armed = false;
    options.beforeCommand = [&](CommandArguments& sent) {
        if (armed && sent.command == command) take(sent);
    };
    CheckFixture fixture(part, options);
    fixture.Cheapen();
    std::printf("%s\n", what);
    std::fflush(stdout);
    armed = true;
    const World layer = TestPicture(16, 16, Depth::k8);
    switch (command) {
        case PF_Cmd_SMART_PRE_RENDER:
        case PF_Cmd_SMART_RENDER: {
            part.Count("frames");
            FrameRequest request;
            request.layer = &layer;
            request.params = &fixture.Session().Params();
            request.texture = &layer;
            const auto frame = fixture.Session().Render(request);
            static_cast<void>(frame);
            break;
        }
        default:
            fixture.Session().Send(command, nullptr, nullptr, nullptr);
    }
    armed = false;
}

}  // namespace

void StandsNullPointers(CheckRun& run) {
    std::vector<SubCheck> subChecks;
    const auto add = [&](const char* what, PF_Cmd command, std::function<void(CommandArguments&)> take) {
        subChecks.push_back({fmt::format("command {} with {}", command, what),
                             [=](CheckRun& part) { SendWithout(part, what, command, take); }});
    };
    const auto noSuites = [](CommandArguments& sent) { sent.in->pica_basicP = nullptr; };
    const auto noGlobal = [](CommandArguments& sent) { sent.in->global_data = nullptr; };
    for (const PF_Cmd command : {PF_Cmd_ABOUT, PF_Cmd_UPDATE_PARAMS_UI, PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_RENDER}) {
        add("no suites", command, noSuites);
    }
    for (const PF_Cmd command : {PF_Cmd_GLOBAL_SETDOWN, PF_Cmd_SMART_PRE_RENDER, PF_Cmd_SMART_RENDER}) {
        add("no global data", command, noGlobal);
    }
    // A panel command without its rows or its extra, a frame without the record of what is asked: hosts with faults of
    // their own have sent each of these.
    add("no rows", PF_Cmd_UPDATE_PARAMS_UI, [](CommandArguments& sent) { sent.params = nullptr; });
    add("no extra", PF_Cmd_USER_CHANGED_PARAM, [](CommandArguments& sent) { sent.extra = nullptr; });
    add("no extra", PF_Cmd_EVENT, [](CommandArguments& sent) { sent.extra = nullptr; });
    add("no extra", PF_Cmd_SMART_PRE_RENDER, [](CommandArguments& sent) { sent.extra = nullptr; });
    add("no extra", PF_Cmd_SMART_RENDER, [](CommandArguments& sent) { sent.extra = nullptr; });
    add("no pre-render data", PF_Cmd_SMART_RENDER, [](CommandArguments& sent) {
        static_cast<PF_SmartRenderExtra*>(sent.extra)->input->pre_render_data = nullptr;
    });
    RunSubChecks(run, subChecks);
}

}  // namespace umbrant::host
