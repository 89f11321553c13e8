// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/video/clip_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <span>
#include <sstream>
#include <system_error>

#include "host/video/container.h"
#include "host/video/ffmpeg.h"
#include "host/why_no_file.h"
#include "hostapi/limits.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

constexpr std::array<std::string_view, 20> kExtensions = {".mov", ".mp4", ".m4v",  ".mkv", ".webm", ".avi",  ".mxf",
                                                          ".nut", ".ts",  ".m2ts", ".mts", ".mpg",  ".mpeg", ".ogv",
                                                          ".wmv", ".flv", ".3gp",  ".y4m", ".asf",  ".vob"};

Failure CannotRead(const std::string& path, const std::string& reason) {
    return {ErrorKind::kFile, fmt::format("cannot read '{}': {}", path, reason)};
}

/// All that ffprobe prints when it is asked this about a file.
Result<std::string> Ask(const ClipFacts& clip, std::vector<std::string> arguments) {
    const std::string& path = clip.path;
    const std::string argument = FileArgument(path);
    const std::vector<std::string> input = InputArguments(path, clip.demuxer);
    arguments.insert(arguments.end(), input.begin(), input.end());
    auto child = StartTool("ffprobe", arguments, Piped::kOutput);
    if (!child) return CannotRead(path, child.error().sentence);
    std::string text;
    std::vector<char> bytes(1 << 16);
    while (const std::size_t count = (*child)->Read(std::as_writable_bytes(std::span(bytes)))) {
        text.append(bytes.data(), count);
    }
    const ProcessEnd& end = (*child)->Wait();
    if (end.IsWell()) return text;
    if (end.code == 1 && end.lastLine.starts_with(argument + ": ")) {
        return CannotRead(
            path, fmt::format("not a clip that ffmpeg can read ({})", end.lastLine.substr(argument.size() + 2)));
    }
    return CannotRead(path, EndText("ffprobe", end));
}

std::string TextOf(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || !found->is_string()) return "";
    const std::string text = found->get<std::string>();
    return text == "unknown" || text == "unspecified" || text == "reserved" ? "" : text;
}

int NumberOf(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_number_integer() ? found->get<int>() : 0;
}

double SecondsOf(const Json& json, const char* name) {
    return std::strtod(TextOf(json, name).c_str(), nullptr);
}

/// A value of the stream's tags, whose names some formats write in capitals.
std::string TagOf(const Json& stream, const std::string& name) {
    const auto tags = stream.find("tags");
    if (tags == stream.end() || !tags->is_object()) return "";
    for (const auto& [key, value] : tags->items()) {
        const bool same = std::equal(key.begin(), key.end(), name.begin(), name.end(),
                                     [](unsigned char a, char b) { return std::tolower(a) == b; });
        if (same && value.is_string()) return value.get<std::string>();
    }
    return "";
}

bool IsCover(const Json& stream) {
    const auto disposition = stream.find("disposition");
    return disposition != stream.end() && disposition->is_object() && NumberOf(*disposition, "attached_pic") == 1;
}

/// Whether the file says that its pictures are shown lying on their side.
bool IsTurned(const Json& stream) {
    const auto data = stream.find("side_data_list");
    if (data == stream.end() || !data->is_array()) return false;
    for (const Json& one : *data) {
        const auto rotation = one.find("rotation");
        if (rotation == one.end() || !rotation->is_number()) continue;
        if (std::lround(std::abs(rotation->get<double>())) % 180 == 90) return true;
    }
    return false;
}

/// "1/30000" as seconds; 0 for none.
double TickOf(const std::string& base) {
    const std::size_t slash = base.find('/');
    if (slash == std::string::npos) return 0;
    const double below = std::strtod(base.c_str() + slash + 1, nullptr);
    return below > 0 ? std::strtod(base.c_str(), nullptr) / below : 0;
}

/// The times of a stream's pictures, from lines of time, duration and flags; and where it begins. Files whose pictures
/// have no times keep to `rate`.
Result<Done> ReadTimes(ClipFacts& facts, double tick, const std::string& codec, const FrameRate& rate) {
    // Some pictures of this codec are only there for others to be made of, and only the decoder knows which.
    const bool decoded = codec == "vp8";
    auto answer = TRY(Ask(facts, {"-select_streams", std::to_string(facts.stream), "-of", "csv=p=0", "-show_entries",
                                  decoded ? "frame=best_effort_timestamp,pkt_duration" : "packet=pts,duration,flags"}));
    struct Shown {
        double time;
        double duration;
    };
    std::vector<Shown> shown;
    std::istringstream lines(answer);
    bool timed = true;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string time, duration, flags;
        std::getline(fields, time, ',');
        std::getline(fields, duration, ',');
        std::getline(fields, flags, ',');
        if (time.empty() || flags.find('D') != std::string::npos) continue;
        char* end = nullptr;
        const double value = std::strtod(time.c_str(), &end);
        if (end == time.c_str()) timed = false;
        shown.push_back({value * tick, std::strtod(duration.c_str(), nullptr) * tick});
    }
    if (shown.empty()) return CannotRead(facts.path, "the video stream has no frames");
    if (shown.size() > static_cast<std::size_t>(kFarthestFrame)) {
        return CannotRead(facts.path, fmt::format("more than {} frames; cut the clip into parts", kFarthestFrame));
    }
    const double frame = 1 / rate.PerSecond();
    if (!timed) {
        for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = {static_cast<double>(i) * frame, frame};
    }
    std::sort(shown.begin(), shown.end(), [](const Shown& a, const Shown& b) { return a.time < b.time; });
    const double first = shown.front().time;
    for (const Shown& one : shown) facts.times.seconds.push_back(one.time - first);
    const double last = shown.back().duration > 0 ? shown.back().duration : frame;
    facts.times.length = facts.times.seconds.back() + last;
    facts.times.tick = timed ? tick : 0;
    return Done{};
}

/// The rate that the clip says it has, or one of the usual ones, or its mean.
void FindRate(ClipFacts& facts, const Json& stream) {
    std::vector<FrameRate> candidates;
    const auto add = [&candidates](const std::string& text) {
        if (const auto rate = ReadRate(text)) candidates.push_back(*rate);
    };
    add(TextOf(stream, "r_frame_rate"));
    for (const char* usual : {"24000/1001", "24", "25", "30000/1001", "30", "48", "50", "60000/1001", "60"}) add(usual);
    add(TextOf(stream, "avg_frame_rate"));
    if (const auto rate = ConstantRate(facts.times, candidates)) {
        facts.rate = *rate;
        return;
    }
    facts.isConstant = false;
    const auto mean = ReadRate(TextOf(stream, "avg_frame_rate"));
    facts.rate = mean.value_or(FrameRate{});
}

/// The decoder that keeps a stream's alpha where ffmpeg's own choice does not.
std::string DecoderFor(const std::string& codec, const Json& stream) {
    if (TagOf(stream, "alpha_mode") != "1") return "";
    return codec == "vp9" ? "libvpx-vp9" : codec == "vp8" ? "libvpx" : "";
}

Result<Done> ReadPictures(ClipFacts& facts, const Json& stream) {
    const std::string codec = TextOf(stream, "codec_name");
    facts.stream = NumberOf(stream, "index");
    facts.width = NumberOf(stream, "width");
    facts.height = NumberOf(stream, "height");
    if (facts.width <= 0 || facts.height <= 0) return CannotRead(facts.path, "the video stream has no size");
    if (IsTurned(stream)) std::swap(facts.width, facts.height);
    if (std::max(facts.width, facts.height) > PF_MAX_WORLD_WIDTH) {
        return CannotRead(facts.path, fmt::format("too large: {} x {} pixels; no side may be longer than {}",
                                                  facts.width, facts.height, PF_MAX_WORLD_WIDTH));
    }
    const std::string format = TextOf(stream, "pix_fmt");
    facts.bits = BitsOfPixelFormat(format);
    facts.isRgb = format.find("rgb") != std::string::npos || format.find("bgr") != std::string::npos ||
                  format.starts_with("gbr") || format.starts_with("pal");
    facts.decoder = DecoderFor(codec, stream);
    const std::string aspect = TextOf(stream, "sample_aspect_ratio");
    if (aspect != "1:1" && aspect != "0:1" && !aspect.starts_with("0:")) facts.aspect = aspect;
    facts.color = {TextOf(stream, "color_primaries"), TextOf(stream, "color_transfer"), TextOf(stream, "color_space"),
                   TextOf(stream, "color_range")};
    facts.timecode = TagOf(stream, "timecode");
    const FrameRate said = ReadRate(TextOf(stream, "r_frame_rate")).value_or(FrameRate{});
    if (auto read = ReadTimes(facts, TickOf(TextOf(stream, "time_base")), codec, said); !read) return read;
    FindRate(facts, stream);
    return Done{};
}

}  // namespace

bool IsClipName(std::string_view path) {
    std::string extension = fs::path(path).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

int BitsOfPixelFormat(std::string_view name) {
    // Deeper channels have an order of bytes, which the name ends with; packed ones of less than eight bits too.
    if (!name.ends_with("le") && !name.ends_with("be")) return 8;
    name.remove_suffix(2);
    for (const std::string_view packed : {"565", "555", "444"}) {
        if (name.ends_with(packed)) return 8;
    }
    const std::size_t digits = name.find_last_not_of("0123456789") + 1;
    const int number = std::atoi(std::string(name.substr(digits)).c_str());
    // rgb48 and rgba64 name the bits of the whole pixel, p010 and y210 begin with something else.
    if (number == 48 || number == 64) return 16;
    if (number > 32) return number % 100;
    return number > 8 ? number : 16;
}

Result<ClipFacts> ReadClipFacts(const std::string& path) {
    if (const auto reason = WhyNoFile(path)) return CannotRead(path, *reason);
    std::error_code error;
    if (fs::is_directory(path, error)) return CannotRead(path, "a folder, not a clip");
    if (!fs::is_regular_file(path, error)) return CannotRead(path, "not a regular file");
    if (fs::file_size(path, error) == 0 && !error) return CannotRead(path, "the file is empty");
    ClipFacts facts;
    facts.path = path;
    auto demuxer = TRY(ReadDemuxer(path));
    facts.demuxer = demuxer;
    auto answer = TRY(Ask(facts, {"-of", "json", "-show_streams", "-show_format"}));
    const Json json = Json::parse(answer, nullptr, false);
    const auto streams = json.is_object() ? json.find("streams") : json.end();
    if (!json.is_object() || streams == json.end() || !streams->is_array()) {
        return CannotRead(path, "ffprobe did not report the streams");
    }
    const Json* pictures = nullptr;
    for (const Json& stream : *streams) {
        const std::string type = TextOf(stream, "codec_type");
        if (type == "audio") facts.sound.push_back(TextOf(stream, "codec_name"));
        if (type == "video" && !pictures && !IsCover(stream)) pictures = &stream;
    }
    if (!pictures) return CannotRead(path, "there is no video stream");
    const auto format = json.find("format");
    if (format != json.end()) facts.start = SecondsOf(*pictures, "start_time") - SecondsOf(*format, "start_time");
    if (facts.timecode.empty() && format != json.end()) facts.timecode = TagOf(*format, "timecode");
    TRY(ReadPictures(facts, *pictures));
    return facts;
}

}  // namespace umbrant::host
