// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/isolation/module_messages.h"

#include "host/parameters/param_kind.h"
#include "host/process/channel.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

using nlohmann::json;

/// A row's value as it is in its ParamRow.
struct RowValue {
    int index;
    PF_ParamType type;
    PF_ParamDefUnion u;
    bool hasPoint;
    LayerPoint point;
};

/// The numbers of a CommandRecord.
struct CommandNumbers {
    PF_Cmd command;
    PF_Err error;
    double milliseconds;
    bool messageIsError;
    Balance balance;
    StageTimes stages;
};

/// The numbers of a FrameRequest.
struct RequestNumbers {
    int layerWidth, layerHeight;
    PF_RationalScale downsampleX, downsampleY, pixelAspect;
    PF_Point textureOrigin;
    Canvas canvas;
    bool hasRegion;
    PF_LRect region;
    A_long time, timeStep, totalTime;
    A_u_long timeScale;
    PF_Quality quality;
    PF_Field field;
};

/// The numbers of SessionOptions.
struct OptionNumbers {
    A_AppID appId;
    A_short apiMajor, apiMinor;
    AEGP_LayerFlags layerFlags;
    int layerWidth, layerHeight;
    bool offerSuites;
    UMBRANT_Renderer renderer;
};

}  // namespace

json FailureJson(const Failure& failure) {
    return {{"kind", static_cast<int>(failure.kind)}, {"sentence", failure.sentence}};
}

Failure ReadFailure(const json& object) {
    return {static_cast<ErrorKind>(object.at("kind").get<int>()), object.at("sentence").get<std::string>()};
}

json RegistrationJson(const Registration& effect) {
    return {{"name", effect.name},         {"matchName", effect.matchName},
            {"category", effect.category}, {"entry", effect.entryPoint},
            {"kind", effect.kind},         {"apiMajor", effect.apiMajor},
            {"apiMinor", effect.apiMinor}, {"reserved", effect.reservedInfo}};
}

Registration RegistrationOf(const json& object) {
    return {object.at("name"), object.at("matchName"), object.at("category"), object.at("entry"),
            object.at("kind"), object.at("apiMajor"),  object.at("apiMinor"), object.at("reserved")};
}

json DeclarationJson(const ParamSet& params) {
    json rows = json::array();
    // Row 0 is the layer, which every set has.
    for (int i = 1; i < params.Count(); ++i) {
        const ParamRow& row = params.Row(i);
        rows.push_back({{"def", BytesOf(row.def)}, {"text", row.text ? *row.text : std::string()}});
    }
    return rows;
}

ParamSet DeclarationOf(const json& object) {
    ParamSet params;
    for (const json& row : object) {
        auto def = RecordOf<PF_ParamDef>(row.at("def"));
        const auto text = row.at("text").get<std::string>();
        if (const char** pointer = TextPointer(def)) *pointer = text.c_str();
        params.Add(PF_ParamIndex_NONE, &def);
    }
    params.Finish();
    return params;
}

json ValuesJson(const ParamSet& params) {
    std::vector<RowValue> values;
    for (const ParamRow& row : params.Rows()) {
        if (!HasValue(KindOf(row.def))) continue;
        values.push_back(
            {row.index, row.def.param_type, row.def.u, row.point.has_value(), row.point.value_or(LayerPoint{})});
    }
    return BytesOf(values);
}

void SetValues(const json& object, ParamSet& params) {
    for (const RowValue& value : RecordsOf<RowValue>(object)) {
        if (value.index < 0 || value.index >= params.Count()) continue;
        const PF_ParamDef& def = params.Row(value.index).def;
        if (def.param_type != value.type || !HasValue(KindOf(def))) continue;
        params.SetValue(value.index, value.u, value.hasPoint ? std::optional(value.point) : std::nullopt);
    }
}

json PanelJson(const std::vector<PanelRow>& rows) {
    json list = json::array();
    for (const PanelRow& row : rows) {
        list.push_back({row.type, row.name, row.hidden, row.disabled, row.collapsed, row.updates});
    }
    return list;
}

std::vector<PanelRow> PanelOf(const json& object) {
    std::vector<PanelRow> rows;
    for (const json& row : object) {
        rows.push_back({row.at(0), row.at(1), row.at(2), row.at(3), row.at(4), row.at(5)});
    }
    return rows;
}

json CommandsJson(const std::vector<CommandRecord>& commands) {
    json list = json::array();
    for (const CommandRecord& record : commands) {
        const CommandNumbers numbers{record.command,        record.error,   record.milliseconds,
                                     record.messageIsError, record.balance, record.stages};
        list.push_back({{"numbers", BytesOf(numbers)}, {"message", record.message}});
    }
    return list;
}

std::vector<CommandRecord> CommandsOf(const json& object) {
    std::vector<CommandRecord> commands;
    for (const json& each : object) {
        const auto numbers = RecordOf<CommandNumbers>(each.at("numbers"));
        commands.push_back({numbers.command, numbers.error, numbers.milliseconds, each.at("message"),
                            numbers.messageIsError, numbers.balance, numbers.stages});
    }
    return commands;
}

json OptionsJson(const SessionOptions& options) {
    return BytesOf(OptionNumbers{options.appId, options.apiMajor, options.apiMinor, options.layerFlags,
                                 options.layerWidth, options.layerHeight, options.offerSuites, options.renderer});
}

SessionOptions OptionsOf(const json& object) {
    const auto numbers = RecordOf<OptionNumbers>(object);
    SessionOptions options;
    options.appId = numbers.appId;
    options.apiMajor = numbers.apiMajor;
    options.apiMinor = numbers.apiMinor;
    options.layerFlags = numbers.layerFlags;
    options.layerWidth = numbers.layerWidth;
    options.layerHeight = numbers.layerHeight;
    options.offerSuites = numbers.offerSuites;
    options.renderer = numbers.renderer;
    return options;
}

json RequestJson(const FrameRequest& request) {
    return BytesOf(RequestNumbers{
        request.layerWidth, request.layerHeight, request.downsampleX, request.downsampleY, request.pixelAspect,
        request.textureOrigin, request.canvas, request.region.has_value(), request.region.value_or(PF_LRect{}),
        request.time, request.timeStep, request.totalTime, request.timeScale, request.quality, request.field});
}

FrameRequest RequestOf(const json& object) {
    const auto numbers = RecordOf<RequestNumbers>(object);
    FrameRequest request;
    request.layerWidth = numbers.layerWidth;
    request.layerHeight = numbers.layerHeight;
    request.downsampleX = numbers.downsampleX;
    request.downsampleY = numbers.downsampleY;
    request.pixelAspect = numbers.pixelAspect;
    request.textureOrigin = numbers.textureOrigin;
    request.canvas = numbers.canvas;
    if (numbers.hasRegion) request.region = numbers.region;
    request.time = numbers.time;
    request.timeStep = numbers.timeStep;
    request.totalTime = numbers.totalTime;
    request.timeScale = numbers.timeScale;
    request.quality = numbers.quality;
    request.field = numbers.field;
    return request;
}

WorldFacts FactsOf(const World& world, std::uint64_t block) {
    return {block, world.Width(), world.Height(), static_cast<int>(world.PixelDepth())};
}

bool IsUsable(const WorldFacts& facts) {
    const bool depth = facts.depth == 8 || facts.depth == 16 || facts.depth == 32;
    return depth && facts.width >= 0 && facts.height >= 0 && facts.width <= PF_MAX_WORLD_WIDTH &&
           facts.height <= PF_MAX_WORLD_HEIGHT;
}

}  // namespace umbrant::host
