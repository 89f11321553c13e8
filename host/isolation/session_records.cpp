// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/session_records.h"

#include <utility>

#include "host/isolation/module_messages.h"
#include "host/process/channel.h"

namespace umbrant::host {

using nlohmann::json;

void SessionRecords::TakeDeclaration(const json& answer) {
    effect = RegistrationOf(answer.at("effect"));
    outFlags = answer.at("outFlags");
    outFlags2 = answer.at("outFlags2");
    version = answer.at("version");
    ParamSet declared = DeclarationOf(answer.at("declaration"));
    SetValues(answer.at("values"), declared);
    // The values of a process that has ended are still those that were asked for.
    if (params.Count() == 1) params = std::move(declared);
}

void SessionRecords::TakeRecords(const json& answer) {
    if (!answer.contains("misbehaviour")) return;
    const auto add = [](auto& all, const json& more) {
        for (const json& each : more) all.insert(all.end(), each.get<std::string>());
    };
    add(misbehaviour, answer.at("misbehaviour"));
    add(acquired, answer.at("acquired"));
    add(refused, answer.at("refused"));
    open = RecordOf<Balance>(answer.at("open"));
    commands = CommandsOf(answer.at("commands"));
    panel.Reset(PanelOf(answer.at("panel")));
    panel.SetOptionsButton(answer.at("optionsButton"));
}

}  // namespace umbrant::host
