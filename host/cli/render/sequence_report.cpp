// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/sequence_report.h"

#include <nlohmann/json.hpp>

#include "host/cli/render/clip_endpoints.h"
#include "host/cli/render/outcome/frame_failures.h"
#include "host/render/canvas_choice.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;
using Kind = FrameOutcome::Kind;

const char* KindName(Kind kind) {
    switch (kind) {
        case Kind::kDrawn:
            return "drawn";
        case Kind::kExists:
            return "exists";
        case Kind::kSkipped:
            return "skipped";
        case Kind::kFailed:
            return "failed";
    }
    return "";
}

}  // namespace

nlohmann::ordered_json NumberJson(const FrameNumber& frame) {
    return frame.IsWhole() ? Json(frame.Begun()) : Json(frame.Value());
}

nlohmann::ordered_json FrameJson(const PlannedFrame& frame, const FrameOutcome& outcome) {
    Json json{{"frame", NumberJson(frame.number)}, {"state", KindName(outcome.kind)}, {"output", frame.output}};
    if (frame.heldInput) json["heldInput"] = *frame.heldInput;
    if (frame.heldTexture) json["heldTexture"] = *frame.heldTexture;
    if (outcome.failure) {
        json["error"] = outcome.failure->sentence;
        json["code"] = static_cast<int>(outcome.failure->kind);
    }
    if (!outcome.message.empty()) json["message"] = outcome.message;
    if (outcome.kind == Kind::kDrawn) {
        json["milliseconds"] = {{"read", outcome.readTime}, {"draw", outcome.drawTime}, {"write", outcome.writeTime}};
    }
    return json;
}

nlohmann::ordered_json CanvasJson(const CanvasFacts& canvas) {
    return {
        {"width", canvas.width}, {"height", canvas.height}, {"canvasOption", "--canvas " + CanvasText(canvas.layer)}};
}

nlohmann::ordered_json TotalsJson(const FrameTotals& totals, std::size_t all, double seconds) {
    return {
        {"frames", all},           {"drawn", totals.drawn}, {"existing", totals.existing}, {"skipped", totals.skipped},
        {"failed", totals.failed}, {"seconds", seconds}};
}

std::string SequenceReport(const SequenceFacts& facts, const FramePlan& plan, const PipelineShape& shape,
                           const std::vector<std::optional<FrameOutcome>>& outcomes, double seconds,
                           const ClipEndpoints& clips) {
    Json frames = Json::array();
    FrameTotals totals;
    FrameFailures failures;
    for (std::size_t i = 0; i < plan.frames.size(); ++i) {
        const auto& outcome = outcomes[i];
        if (!outcome) continue;
        totals.drawn += outcome->kind == Kind::kDrawn;
        totals.existing += outcome->kind == Kind::kExists;
        totals.skipped += outcome->kind == Kind::kSkipped;
        totals.failed += outcome->kind == Kind::kFailed;
        if (outcome->failure) failures.Add(plan, plan.frames[i], *outcome->failure);
        Json frame = FrameJson(plan.frames[i], *outcome);
        if (outcome->kind == Kind::kDrawn) {
            const PF_LRect& rect = outcome->picture;
            frame["picture"] = {{"left", rect.left}, {"top", rect.top}, {"right", rect.right}, {"bottom", rect.bottom}};
        }
        frames.push_back(std::move(frame));
    }
    Json report{
        {"input", facts.input}, {"output", facts.output}, {"renderer", facts.renderer}, {"canvas", facts.canvas}};
    if (facts.covered) report.update(CanvasJson(*facts.covered));
    report.update(Json{{"threads", {{"read", shape.readers}, {"draw", shape.drawers}, {"write", shape.writers}}},
                       {"underWay", shape.underWay},
                       {"totals", TotalsJson(totals, plan.frames.size(), seconds)}});
    if (failures.Count() > 0) report["failures"] = failures.Json();
    report["frames"] = std::move(frames);
    if (Json clip = clips.Report(); !clip.is_null()) report["clip"] = std::move(clip);
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace umbrant::host
