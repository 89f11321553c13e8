// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/render_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "host/cli/program_version.h"
#include "host/render/canvas_choice.h"
#include "host/session/error_names.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

std::string RectText(const PF_LRect& rect) {
    return fmt::format("({}, {}) to ({}, {}), {} x {}", rect.left, rect.top, rect.right, rect.bottom,
                       std::int64_t{rect.right} - rect.left, std::int64_t{rect.bottom} - rect.top);
}

Json RectJson(const PF_LRect& rect) {
    return {{"left", rect.left},
            {"top", rect.top},
            {"right", rect.right},
            {"bottom", rect.bottom},
            {"width", std::int64_t{rect.right} - rect.left},
            {"height", std::int64_t{rect.bottom} - rect.top}};
}

Json CommandsJson(const std::vector<CommandRecord>& commands) {
    Json list = Json::array();
    for (const CommandRecord& record : commands) {
        Json command{
            {"name", CommandName(record.command)}, {"error", record.error}, {"milliseconds", record.milliseconds}};
        if (!record.message.empty()) command["message"] = record.message;
        list.push_back(std::move(command));
    }
    return list;
}

/// Milliseconds by stage. What of the render command is not spent in the host's own calls is the effect's passes.
Json TimingsJson(const RenderFacts& facts, const std::vector<CommandRecord>& commands) {
    double preRender = 0;
    double render = 0;
    StageTimes stages;
    for (const CommandRecord& record : commands) {
        if (record.command == PF_Cmd_SMART_PRE_RENDER) preRender += record.milliseconds;
        if (record.command != PF_Cmd_SMART_RENDER) continue;
        render += record.milliseconds;
        stages.upload += record.stages.upload;
        stages.readBack += record.stages.readBack;
        stages.composite += record.stages.composite;
    }
    const double passes = std::max(0.0, render - stages.upload - stages.readBack - stages.composite);
    return {{"load", facts.load}, {"pre-render", preRender},      {"upload", stages.upload},
            {"passes", passes},   {"read-back", stages.readBack}, {"composite", stages.composite},
            {"save", facts.save}, {"total", facts.total}};
}

}  // namespace

double Stopwatch::Lap() {
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double, std::milli> taken = now - begin_;
    begin_ = now;
    return taken.count();
}

std::string CommandsText(const std::vector<CommandRecord>& commands) {
    std::string text;
    for (const CommandRecord& record : commands) {
        text += fmt::format("{:<28} {:9.3f} ms", CommandName(record.command), record.milliseconds);
        if (record.error != PF_Err_NONE) {
            text += fmt::format("  error {} ({})", record.error, ErrorName(record.error));
        }
        if (!record.message.empty()) text += fmt::format("  says \"{}\"", record.message);
        text += "\n";
    }
    return text;
}

std::string FrameText(const Frame& frame, const EffectSession& session) {
    std::string text = CommandsText(frame.commands);
    text += "result rectangle:  " + RectText(frame.rect) + "\n";
    text += "largest rectangle: " + RectText(frame.maxRect) + "\n";
    for (const std::string& suite : frame.suites) text += "suite: " + suite + "\n";
    return text + RefusedText(session);
}

std::string RefusedText(const EffectSession& session) {
    std::string text;
    for (const std::string& suite : session.RefusedSuites()) text += "refused suite: " + suite + "\n";
    return text;
}

std::string RenderReport(const RenderFacts& facts, const RendererDecision& renderer, const Frame& frame,
                         const EffectSession& session) {
    const GpuStrings gpu = ReadGpuStrings(session.Params());
    std::vector<CommandRecord> commands = session.Commands();
    // The frame was drawn before the session ended.
    const auto ending = std::find_if(commands.begin(), commands.end(), [](const CommandRecord& record) {
        return record.command == PF_Cmd_SEQUENCE_SETDOWN || record.command == PF_Cmd_GLOBAL_SETDOWN;
    });
    commands.insert(ending, frame.commands.begin(), frame.commands.end());
    Json report{
        {"input", facts.input},
        {"output", facts.output},
        {"depth", facts.depth},
        {"downsample", facts.downsample},
        {"canvas", facts.canvas},
        {"canvasOption", "--canvas " + CanvasText(FullSizeCanvas(facts.picture, facts.downsample))},
        {"rectangles",
         {{"layer", RectJson({0, 0, facts.layerWidth, facts.layerHeight})},
          {"result", RectJson(frame.rect)},
          {"largest", RectJson(frame.maxRect)},
          {"picture", RectJson(facts.picture)}}},
        {"milliseconds", TimingsJson(facts, frame.commands)},
        {"host", {{"version", ProgramVersion()}, {"apiVersion", "13.28"}}},
        {"renderer", {{"used", renderer.Name()}, {"why", renderer.why}}},
        {"gpu",
         {{"vendor", gpu.vendor},
          {"renderer", gpu.renderer},
          {"openglVersion", gpu.glVersion},
          {"shaderVersion", gpu.shaderVersion}}},
        {"suites", {{"acquired", session.AcquiredSuites()}, {"refused", session.RefusedSuites()}}},
        {"commands", CommandsJson(commands)},
        {"message", frame.message},
        {"misbehaviour", session.Misbehaviour()},
    };
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace umbrant::host
