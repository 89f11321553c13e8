// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/sheet/make_sheet.h"

#include <fmt/format.h>

#include <utility>

#include "host/cli/output_folder.h"
#include "host/cli/presets/named_presets.h"
#include "host/cli/sheet/sheet_picture.h"
#include "host/parameters/param_kind.h"
#include "host/render/plan/output_check.h"

namespace umbrant::host {

namespace {

/// "Angle 45°".
std::string ValueLabel(ParamSet params, const std::string& key, const std::string& value) {
    const auto index = params.Find(key);
    if (!index || !params.SetFromText(key, value)) return key + " " + value;
    const ParamRow& row = params.Row(*index);
    const char* unit = KindOf(row.def) == ParamKind::kAngle ? "°" : IsPercent(row.def) ? "%" : "";
    const std::string text = params.ValueText(*index);
    return fmt::format("{} {}{}", row.name.empty() ? key : row.name, text, text.ends_with(unit) ? "" : unit);
}

std::string SettingsLine(const ParamSet& params, const SheetCombination& common) {
    std::string line = common.preset.empty() ? "" : "Preset " + common.preset;
    for (const std::string& setting : common.settings) {
        const std::size_t equals = setting.find('=');
        if (!line.empty()) line += " · ";
        line += ValueLabel(params, setting.substr(0, equals), setting.substr(equals + 1));
    }
    return line;
}

Failure TooMany(std::size_t count) {
    return {ErrorKind::kUsage, fmt::format("the sheet would have {} images, and it can have {}; give fewer values or "
                                           "frames",
                                           count, kMostCells)};
}

Result<Done> CheckCount(const std::vector<SheetAxis>& axes) {
    std::size_t count = 1;
    for (const SheetAxis& axis : axes) {
        count *= axis.values.size();
        if (count > kMostCells) return TooMany(count);
    }
    return Done{};
}

Result<Done> CheckFiles(const RenderOptions& render, const std::string& preset) {
    if (render.output == "-") {
        return Failure{ErrorKind::kUsage, "a sheet is written to a file, and '-' is standard output; name a file"};
    }
    TRY(CheckWritable(render.output));
    for (const std::string& read : {preset, BackgroundFile(render)}) {
        if (read.empty()) continue;
        TRY(CheckApart(read, render.output));
    }
    return Done{};
}

}  // namespace

Result<Done> MakeSheet(SheetRequest request) {
    RenderOptions& render = request.job.render;
    TRY(CheckCount(request.axes));
    const auto folder = TRY(OutputFolder::For(render.output, render.makesFolder));
    const std::string preset = TRY(PresetFile(request.common.preset));
    TRY(CheckFiles(render, preset));
    if (render.background.empty()) render.background = kSheetBackground;
    request.job.combinations = Combinations(request.axes, request.common);
    const std::string output = render.output;
    const bool isQuiet = render.sequence.quiet;
    const auto frames = TRY(SheetFrames::Open(std::move(request.job)));
    TRY(frames->CheckApartFrom(output));
    if (frames->Count() > kMostCells) return TooMany(frames->Count());

    SheetContent content;
    content.title = request.title;
    content.settings = request.settings.empty() ? SettingsLine(frames->Defaults(), request.common) : request.settings;
    for (const SheetAxis& axis : request.axes) {
        content.labels.push_back(axis.labels);
        for (std::size_t i = axis.labels.size(); i < axis.values.size(); ++i) {
            const std::string& value = axis.values[i];
            content.labels.back().push_back(axis.key == "preset" ? value
                                                                 : ValueLabel(frames->Defaults(), axis.key, value));
        }
    }
    if (auto labels = frames->FrameLabels(); !labels.empty()) content.labels.push_back(std::move(labels));
    TRY(frames->FindCanvas());
    content.cellWidth = frames->CellWidth();
    content.cellHeight = frames->CellHeight();
    TRY(CheckSheet(content));
    CleanFolderOf(output, isQuiet);
    const std::vector<World> cells = TRY(frames->Draw());
    const World sheet = TRY(DrawSheet(content, cells));
    return WritePicture(output, sheet, {{0, 0, sheet.Width(), sheet.Height()}, sheet.Width(), sheet.Height()});
}

}  // namespace umbrant::host
