// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/render/outcome/frame_cost.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/cli/render/progress_text.h"
#include "host/cli/render/sequence_report.h"
#include "host/render/plan/frame_numbers.h"

namespace umbrant::host {

namespace {

using Json = nlohmann::ordered_json;

std::vector<FrameNumber> NumbersOf(const RenderCost& cost) {
    std::vector<FrameNumber> numbers;
    for (const MeasuredFrame& frame : cost.measured) numbers.push_back(frame.number);
    return numbers;
}

std::string MeasuredText(const RenderCost& cost) {
    if (cost.isImage) return "measured by drawing it";
    const char* clip = cost.isClip ? ", without the clip's encoding" : "";
    return fmt::format("measured by drawing frame{} {}{}", cost.measured.size() == 1 ? "" : "s",
                       FramesText(NumbersOf(cost)), clip);
}

std::string SizeText(const RenderCost& cost) {
    const MeasuredFrame mean = cost.Mean();
    std::string text = cost.isImage ? "1 image" : fmt::format("{} frame{}", cost.frames, cost.frames == 1 ? "" : "s");
    text += fmt::format(" of {}{} x {}", cost.canvas.empty() && !cost.isImage ? "up to " : "", mean.width, mean.height);
    if (!cost.canvas.empty()) text += ", " + cost.canvas;
    if (cost.left > 0) text += fmt::format("; {} more need not or cannot be drawn", cost.left);
    return text + "\n";
}

std::string FilesText(const RenderCost& cost) {
    if (cost.isClip) return "files: one clip, whose size depends on its codec and is not estimated\n";
    std::string text = "files: about " + BytesText(cost.FileBytes());
    if (!cost.isImage) text += fmt::format(", {} each", BytesText(cost.Mean().bytes));
    if (cost.freeBytes > 0) {
        text += fmt::format("; {} are free in '{}'", BytesText(cost.freeBytes), cost.folder);
        if (cost.FileBytes() > cost.freeBytes) text += ", which is NOT enough";
    }
    return text + "\n";
}

}  // namespace

MeasuredFrame RenderCost::Mean() const {
    MeasuredFrame mean;
    if (measured.empty()) return mean;
    for (const MeasuredFrame& frame : measured) {
        mean.width = std::max(mean.width, frame.width);
        mean.height = std::max(mean.height, frame.height);
        mean.read += frame.read;
        mean.draw += frame.draw;
        mean.write += frame.write;
        mean.bytes += frame.bytes;
    }
    const auto count = static_cast<double>(measured.size());
    mean.read /= count;
    mean.draw /= count;
    mean.write /= count;
    mean.bytes /= measured.size();
    return mean;
}

std::uint64_t RenderCost::FileBytes() const {
    return Mean().bytes * frames;
}

double RenderCost::LeastSeconds() const {
    if (frames == 1) return MostSeconds();
    const MeasuredFrame mean = Mean();
    // The effect draws one frame at a time in a process.
    const double slowest = std::max({mean.read / shape.readers, mean.draw, mean.write / shape.writers});
    return startSeconds + slowest / 1000 * static_cast<double>(frames);
}

double RenderCost::MostSeconds() const {
    const MeasuredFrame mean = Mean();
    return startSeconds + (mean.read + mean.draw + mean.write) / 1000 * static_cast<double>(frames);
}

std::string BytesText(std::uint64_t bytes) {
    constexpr const char* kUnits[] = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 1024 && unit + 1 < std::size(kUnits); ++unit) size /= 1024;
    return unit == 0 ? fmt::format("{} B", bytes) : fmt::format("{:.1f} {}", size, kUnits[unit]);
}

std::string CostText(const RenderCost& cost) {
    std::string text = "nothing is written: this is a dry run\n";
    if (cost.measured.empty()) {
        return text + fmt::format("there is no frame to draw; {} need not or cannot be drawn\n", cost.left);
    }
    const MeasuredFrame mean = cost.Mean();
    text += SizeText(cost) + FilesText(cost);
    text += fmt::format("memory: up to {} for {} frame{} in progress; this process has taken {}\n",
                        BytesText(cost.frameMemory), cost.shape.underWay, cost.shape.underWay == 1 ? "" : "s",
                        BytesText(cost.processMemory));
    const std::string least = DurationText(cost.LeastSeconds()), most = DurationText(cost.MostSeconds());
    text += fmt::format("time: {}{}, {}\n", least, least == most ? "" : " to " + most, MeasuredText(cost));
    text += fmt::format("    the start {}; {}read {}, draw {}, encode {}\n", DurationText(cost.startSeconds),
                        cost.isImage ? "" : "each frame: ", DurationText(mean.read / 1000),
                        DurationText(mean.draw / 1000), DurationText(mean.write / 1000));
    if (cost.failures.Count() > 0) text += cost.failures.List() + "\n";
    return text;
}

std::string CostReport(const RenderCost& cost) {
    const MeasuredFrame mean = cost.Mean();
    Json report{{"dryRun", true}, {"frames", cost.frames}, {"notDrawn", cost.left}};
    if (!cost.measured.empty()) {
        report.update(Json{{"width", mean.width}, {"height", mean.height}});
        if (!cost.canvas.empty()) report["canvasOption"] = cost.canvas;
        if (!cost.isClip) report["fileBytes"] = cost.FileBytes();
        if (cost.freeBytes > 0) report["freeBytes"] = cost.freeBytes;
        report["memory"] = {{"frames", cost.frameMemory}, {"process", cost.processMemory}};
        report["underWay"] = cost.shape.underWay;
        report["seconds"] = {
            {"start", cost.startSeconds}, {"least", cost.LeastSeconds()}, {"most", cost.MostSeconds()}};
    }
    Json measured = Json::array();
    for (const MeasuredFrame& frame : cost.measured) {
        Json each = Json::object();
        if (!cost.isImage) each["frame"] = NumberJson(frame.number);
        each.update(Json{{"width", frame.width}, {"height", frame.height}});
        if (!cost.isClip) each["bytes"] = frame.bytes;
        each["milliseconds"] = {{"read", frame.read}, {"draw", frame.draw}, {"encode", frame.write}};
        measured.push_back(std::move(each));
    }
    report["measured"] = std::move(measured);
    if (cost.failures.Count() > 0) report["failures"] = cost.failures.Json();
    return report.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace umbrant::host
