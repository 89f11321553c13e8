// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/clip_format.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>

#include "host/parameters/param_path.h"

namespace umbrant::host {

namespace {

/// Chroma for every pixel, and no rounding for speed's sake.
constexpr char kScaling[] = "flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp";

std::string ExtensionOf(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

bool Holds(const ClipCodec& codec, const std::string& extension) {
    return std::find(codec.extensions.begin(), codec.extensions.end(), extension) != codec.extensions.end();
}

std::string Joined(const std::vector<std::string>& names, const char* last) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == names.size() ? last : ", ") + names[i];
    }
    return text;
}

/// What the scaler calls a matrix; empty for one that it does not know.
std::string ScalerMatrix(const std::string& tag) {
    constexpr std::array<std::array<const char*, 2>, 7> kNames = {{{"bt709", "bt709"},
                                                                   {"smpte170m", "smpte170m"},
                                                                   {"bt470bg", "bt470"},
                                                                   {"fcc", "fcc"},
                                                                   {"smpte240m", "smpte240m"},
                                                                   {"bt2020nc", "bt2020"},
                                                                   {"bt2020c", "bt2020"}}};
    for (const auto& [name, scaler] : kNames) {
        if (tag == name) return scaler;
    }
    return "";
}

/// Whether a container takes a sound codec as it is.
bool TakesSound(const std::string& extension, const std::string& codec) {
    if (extension == ".webm") return codec == "opus" || codec == "vorbis";
    if (extension == ".mp4") {
        return codec == "aac" || codec == "ac3" || codec == "eac3" || codec == "mp3" || codec == "opus";
    }
    if (extension == ".mov") {
        for (const char* taken : {"aac", "ac3", "eac3", "alac", "mp3", "mp2", "amr_nb", "amr_wb", "qdm2"}) {
            if (codec == taken) return true;
        }
        return codec.starts_with("pcm_") && codec != "pcm_bluray" && codec != "pcm_dvd";
    }
    return true;
}

}  // namespace

const std::vector<ClipCodec>& ClipCodecs() {
    static const std::vector<ClipCodec> codecs = {
        {"prores4444",
         "ProRes 4444",
         "prores_ks",
         "yuva444p10le",
         "yuva444p10le",
         false,
         false,
         {"-profile:v", "4444", "-alpha_bits", "16", "-vendor", "apl0"},
         {".mov", ".mkv"}},
        {"ffv1",
         "FFV1",
         "ffv1",
         "bgra",
         "gbrap16le",
         true,
         false,
         {"-level", "3", "-g", "1", "-slicecrc", "1"},
         {".mkv"}},
        {"vp9",
         "VP9",
         "libvpx-vp9",
         "yuva420p",
         "yuva420p",
         false,
         true,
         {"-crf", "15", "-b:v", "0", "-auto-alt-ref", "0", "-deadline", "good", "-cpu-used", "2", "-row-mt", "1"},
         {".webm", ".mkv"}},
        {"png", "PNG", "png", "rgba", "rgba64be", true, false, {}, {".mov", ".mkv"}},
        {"h264",
         "H.264",
         "libx264",
         "yuv420p",
         "yuv420p",
         false,
         false,
         {"-preset", "medium", "-crf", "16", "-movflags", "+faststart"},
         {".mp4"},
         false,
         true},
        {"webp",
         "animated WebP",
         "libwebp_anim",
         "bgra",
         "bgra",
         true,
         false,
         {"-lossless", "0", "-quality", "90", "-loop", "0"},
         {".webp"}},
        {"apng", "APNG", "apng", "rgba", "rgba64be", true, false, {"-plays", "0"}, {".apng"}},
    };
    return codecs;
}

std::string ClipCodecNames() {
    std::vector<std::string> names;
    for (const ClipCodec& codec : ClipCodecs()) names.emplace_back(codec.name);
    return Joined(names, ", ");
}

Result<const ClipCodec*> CodecFor(const std::string& path, const std::string& name) {
    const std::string extension = ExtensionOf(path);
    const auto& codecs = ClipCodecs();
    if (!name.empty()) {
        const auto named =
            std::find_if(codecs.begin(), codecs.end(), [&](const ClipCodec& c) { return c.name == name; });
        if (named == codecs.end()) {
            std::vector<std::string> names;
            for (const ClipCodec& codec : codecs) names.emplace_back(codec.name);
            const auto near = Nearest(name, names, 1);
            return Failure{ErrorKind::kUsage,
                           fmt::format("there is no codec '{}'; the codecs are {}{}", name, ClipCodecNames(),
                                       near.empty() ? "" : fmt::format("; did you mean '{}'?", near.front()))};
        }
        if (Holds(*named, extension)) return &*named;
        return Failure{ErrorKind::kUsage, fmt::format("'{}' cannot hold {}, which goes into {}", path, named->words,
                                                      Joined(named->extensions, " or "))};
    }
    // An extension's default is the codec that names it first, else the first that holds it.
    for (const ClipCodec& codec : codecs) {
        if (codec.extensions.front() == extension) return &codec;
    }
    return Failure{ErrorKind::kUsage,
                   fmt::format("cannot write '{}': clips with alpha are written as .mov, .mkv, .webm, .webp or .apng, "
                               "and clips without alpha as .mp4",
                               path)};
}

bool IsWrittenAsClip(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    return IsClipName(path) || std::any_of(ClipCodecs().begin(), ClipCodecs().end(),
                                           [&](const ClipCodec& codec) { return Holds(codec, extension); });
}

const char* MuxerOf(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    for (const auto& [name, muxer] :
         {std::pair(".mkv", "matroska"), {".webm", "webm"}, {".mp4", "mp4"}, {".webp", "webp"}, {".apng", "apng"}}) {
        if (extension == name) return muxer;
    }
    return "mov";
}

bool HoldsSound(const std::string& path) {
    const std::string extension = ExtensionOf(path);
    return extension != ".webp" && extension != ".apng";
}

SoundPlan PlanSound(const ClipFacts& clip, const std::string& output) {
    const std::string extension = ExtensionOf(output);
    SoundPlan plan;
    std::vector<std::string> changed;
    const std::string instead = extension == ".webm" ? "libopus" : extension == ".mp4" ? "aac" : "pcm_s24le";
    for (const std::string& codec : clip.sound) {
        const bool stays = TakesSound(extension, codec);
        plan.codecs.push_back(stays ? "copy" : instead);
        if (!stays) changed.push_back(codec);
    }
    if (!changed.empty()) {
        plan.note = fmt::format("the sound of '{}' ({}) is converted to {}, since {} cannot hold the original",
                                clip.path, Joined(changed, ", "), instead == "libopus" ? "opus" : instead, extension);
    }
    return plan;
}

ColorTags TagsFor(const ClipCodec& codec, const ClipFacts* from) {
    ColorTags tags = from ? from->color : ColorTags{"bt709", "bt709", "bt709", "tv"};
    if (codec.isRgb) {
        tags.matrix = "gbr";
        tags.range = "pc";
        return tags;
    }
    if (!codec.keepsAlpha) {
        // For players, which guess what is not named.
        for (std::string* tag : {&tags.primaries, &tags.transfer}) {
            if (tag->empty()) *tag = "bt709";
        }
        if (ScalerMatrix(tags.matrix).empty()) tags.matrix = "bt709";
    }
    // A clip that does not name its matrix is read and written by the one that ffmpeg then takes, and still names none.
    const bool unnamed = from && !from->isRgb && tags.matrix.empty();
    if (!unnamed && ScalerMatrix(tags.matrix).empty()) tags.matrix = "bt709";
    if (!codec.keepsRange || tags.range != "pc") tags.range = "tv";
    return tags;
}

std::string EncoderFilters(const ClipCodec& codec, RawFormat raw, const ColorTags& tags, const std::string& aspect) {
    std::string filters = fmt::format("scale={}", kScaling);
    if (!codec.isRgb) {
        filters += fmt::format(":out_color_matrix={}:out_range={}",
                               tags.matrix.empty() ? "bt601" : ScalerMatrix(tags.matrix), tags.range);
    }
    filters += fmt::format(",format={}", raw == RawFormat::k8 ? codec.pixels8 : codec.pixelsDeep);
    const auto orUnknown = [](const std::string& tag) { return tag.empty() ? std::string("unknown") : tag; };
    filters += fmt::format(",setparams=color_primaries={}:color_trc={}:colorspace={}:range={}",
                           orUnknown(tags.primaries), orUnknown(tags.transfer), orUnknown(tags.matrix), tags.range);
    std::string ratio = aspect.empty() ? "1:1" : aspect;
    std::replace(ratio.begin(), ratio.end(), ':', '/');
    return filters + ",setsar=" + ratio;
}

std::string DecoderFilters(RawFormat raw, int width, int height, int first) {
    const std::string from = first > 0 ? fmt::format("trim=start_frame={},", first) : "";
    return fmt::format("{}scale={}:{}:{},format={}", from, width, height, kScaling, NameOf(raw));
}

}  // namespace umbrant::host
