// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/clip_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <sstream>

#include "host/image/picture_place.h"
#include "host/image/recipe/recipe_text.h"
#include "host/video/container.h"
#include "host/video/ffmpeg.h"

namespace umbrant::host {

namespace {

Failure CannotWrite(const std::string& path, const std::string& reason) {
    return {ErrorKind::kFile, fmt::format("cannot write '{}': {}", path, reason)};
}

void AddSound(const ClipTarget& target, std::vector<std::string>& arguments) {
    const SoundPlan sound = PlanSound(*target.from, target.path);
    for (std::size_t i = 0; i < sound.codecs.size(); ++i) {
        arguments.insert(arguments.end(),
                         {"-map", fmt::format("1:a:{}", i), fmt::format("-c:a:{}", i), sound.codecs[i]});
        if (sound.codecs[i] == "libopus") {
            // Layouts that opus does not name are left to its general mapping.
            arguments.insert(arguments.end(), {fmt::format("-b:a:{}", i), "192k"});
        }
    }
}

}  // namespace

Result<Done> CheckEncoder(const ClipCodec& codec, const std::string& path) {
    auto child = StartTool("ffmpeg", {"-encoders"}, Piped::kOutput);
    if (!child) return CannotWrite(path, child.error().sentence);
    std::string text(1 << 18, '\0');
    text.resize((*child)->Read(std::as_writable_bytes(std::span(text))));
    if (const ProcessEnd& end = (*child)->Wait(); !end.IsWell()) return CannotWrite(path, EndText("ffmpeg", end));
    std::istringstream lines(text);
    std::string flags, name;
    for (std::string line; std::getline(lines, line);) {
        if (std::istringstream(line) >> flags >> name && name == codec.encoder) return Done{};
    }
    Failure missing = CannotWrite(
        path,
        fmt::format("this ffmpeg cannot write {}: it was built without the encoder '{}'", codec.words, codec.encoder));
    if (codec.keepsAlpha) return missing;
    // Other clips can show the same.
    return Failure{ErrorKind::kUsage, missing.sentence + "; write .mov, .mkv or .webm"};
}

/// Whether a recipe is added as a box of its own when ffmpeg has ended: its muxers of such files keep known names only.
bool TakesRecipeBox(const std::string& path) {
    const std::string muxer = MuxerOf(path);
    return muxer == "mov" || muxer == "mp4";
}

std::vector<std::string> EncoderArguments(const ClipTarget& target, const std::string& file) {
    std::vector<std::string> all = {"-y",
                                    "-f",
                                    "rawvideo",
                                    "-pix_fmt",
                                    NameOf(target.raw),
                                    "-video_size",
                                    fmt::format("{}x{}", target.width, target.height),
                                    "-framerate",
                                    fmt::format("{}/{}", target.rate.scale, target.rate.step),
                                    "-i",
                                    "pipe:0"};
    const auto add = [&all](std::initializer_list<std::string> more) { all.insert(all.end(), more); };
    if (target.from) {
        const double start = target.from->start + (target.part ? target.part->first : 0);
        if (target.part) {
            add({"-ss", fmt::format("{:.6f}", start), "-t", fmt::format("{:.6f}", target.part->second)});
        } else if (start != 0) {
            // The frames begin at 0, and the sound keeps its place relative to them.
            add({"-itsoffset", fmt::format("{:.6f}", -start)});
        }
        const std::vector<std::string> input = InputArguments(target.from->path, target.from->demuxer);
        all.insert(all.end(), input.begin(), input.end());
    }
    add({"-map", "0:v:0"});
    if (target.from && target.keepsSound) AddSound(target, all);
    if (target.from) {
        add({"-map_metadata", "1", "-map_chapters", target.part ? "-1" : "1"});
        if (!target.part && !target.from->timecode.empty() && std::string(MuxerOf(target.path)) == "mov") {
            add({"-timecode", target.from->timecode});
        }
    }
    ColorTags tags = TagsFor(*target.codec, target.from);
    if (target.colors) {
        tags.primaries = target.colors->primaries;
        tags.transfer = target.colors->transfer;
    }
    add({"-vf", EncoderFilters(*target.codec, target.raw, tags, target.from ? target.from->aspect : ""), "-c:v",
         target.codec->encoder});
    all.insert(all.end(), target.codec->arguments.begin(), target.codec->arguments.end());
    if (!TakesRecipeBox(target.path)) {
        // Without "bitexact" the file would have a random identifier; an empty text removes the recipe of `from`.
        add({"-fflags", "+bitexact", "-metadata", fmt::format("{}={}", kRecipeName, target.recipe)});
    }
    // ffmpeg cuts FFV1's third version into more slices than such a picture has pixels, and loses some without a word;
    // the first version has none. What comes last counts.
    constexpr int kSmallest = 4;
    if (std::string(target.codec->name) == "ffv1" && std::min(target.width, target.height) < kSmallest) {
        add({"-level", "1", "-slicecrc", "0"});
    }
    add({"-fps_mode", "passthrough", "-f", MuxerOf(target.path), FileArgument(file)});
    return all;
}

ClipWriter::ClipWriter(ClipTarget target)
    : target_(std::move(target)), place_(BehindLinks(target_.path)), file_(place_) {}

Result<std::unique_ptr<ClipWriter>> ClipWriter::Start(ClipTarget target) {
    std::unique_ptr<ClipWriter> writer(new ClipWriter(std::move(target)));
    auto child = StartTool("ffmpeg", EncoderArguments(writer->target_, writer->file_.Name().string()), Piped::kInput);
    if (!child) return CannotWrite(writer->target_.path, child.error().sentence);
    writer->encoder_ = std::move(*child);
    return writer;
}

Failure ClipWriter::Died() {
    const ProcessEnd& end = encoder_->Wait();
    if (!end.IsWell()) {
        return CannotWrite(target_.path, fmt::format("{}, after {} frames", EndText("ffmpeg", end), written_));
    }
    return CannotWrite(target_.path, fmt::format("ffmpeg accepted no more frames after {}", written_));
}

Result<Done> ClipWriter::Write(const World& picture) {
    const std::vector<std::byte> bytes = RawFromWorld(target_.raw, picture);
    if (!encoder_->Write(bytes)) return Died();
    ++written_;
    return Done{};
}

Result<Done> ClipWriter::Finish() {
    encoder_->CloseInput();
    if (!encoder_->Wait().IsWell()) return Died();
    std::error_code error;
    // The temporary file is there, empty, from its first moment on.
    if (const auto size = std::filesystem::file_size(file_.Name(), error); error || size == 0) {
        return CannotWrite(target_.path, "ffmpeg ended without an error, but there is no clip");
    }
    if (!target_.recipe.empty() && TakesRecipeBox(target_.path)) {
        if (const auto problem = AppendRecipeBox(target_.recipe, file_.Descriptor())) {
            return CannotWrite(target_.path, *problem);
        }
    }
    // Only now: the mode may be one that ffmpeg could not have written with.
    TakeModeOf(place_, file_.Descriptor());
    return file_.PutInPlace();
}

}  // namespace umbrant::host
