// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

#include "host/cli/recipe/recipe.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>

#include "host/cli/program_version.h"
#include "host/image/recipe/recipe_text.h"
#include "host/parameters/echo_text.h"
#include "host/why_no_file.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr const char* kPresetKeys[] = {"version", "values", "keyframes"};

Failure Damaged(const std::string& file, const std::string& reason) {
    return Usage(
        fmt::format("the recipe of '{}' is damaged: {}; take another file that was drawn with the same "
                    "values, or give them with --preset and --set",
                    file, reason));
}

/// A whole number of an object that fits an int; nothing for anything else.
std::optional<int> WholeNumber(const Json& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_number_integer()) return std::nullopt;
    if (found->is_number_unsigned() && found->get<std::uint64_t>() > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    const auto number = found->get<std::int64_t>();
    if (number < 0 || number > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(number);
}

/// The text of an object; nothing if it is missing or of another kind.
std::optional<std::string> TextOf(const Json& json, const char* key) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_string()) return std::nullopt;
    return found->get<std::string>();
}

/// Reads "options". Returns whether they are texts by name.
bool TakeOptions(const Json& json, Recipe& recipe) {
    const auto options = json.find("options");
    if (options == json.end() || !options->is_object()) return false;
    for (const auto& [name, value] : options->items()) {
        if (!value.is_string()) return false;
        recipe.options.emplace_back(name, value.get<std::string>());
    }
    return true;
}

/// Reads what every recipe has. Returns what is missing or of another kind.
std::optional<std::string> TakeParts(const Json& json, Recipe& recipe) {
    const auto program = TextOf(json, "program");
    const auto renderer = TextOf(json, "renderer");
    const auto module = json.find("module");
    if (!program) return "\"program\" is not a text";
    if (!renderer) return "\"renderer\" is not a text";
    if (module == json.end() || !module->is_object()) return "\"module\" is not an object";
    const auto name = TextOf(*module, "name");
    const auto version = TextOf(*module, "version");
    if (!name || !version) return "\"module\" has no name or no version";
    recipe.program = *program;
    recipe.renderer = *renderer;
    recipe.moduleName = *name;
    recipe.moduleVersion = *version;
    if (!TakeOptions(json, recipe)) return "\"options\" is not an object of texts";
    if (json.contains("pixels")) {
        recipe.pixels = WholeNumber(json, "pixels");
        if (!recipe.pixels) return "\"pixels\" is not a whole number";
    }
    Json preset = Json::object();
    for (const char* key : kPresetKeys) {
        if (json.contains(key)) preset[key] = json[key];
    }
    if (!json.contains("version") || !json.contains("values")) return "it has no values";
    recipe.preset = preset.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (json.contains("frame")) {
        if (!json["frame"].is_number()) return "\"frame\" is not a number";
        recipe.frame = json["frame"].get<double>();
    }
    return std::nullopt;
}

/// An open file, or why it cannot be opened.
class InputFile {
 public:
    explicit InputFile(const std::string& file) {
        if ((reason_ = WhyNoFile(file))) return;
        std::error_code error;
        if (!fs::is_regular_file(file, error)) {
            reason_ = "not a regular file";
            return;
        }
        descriptor_ = open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor_ < 0) reason_ = std::strerror(errno);
    }
    ~InputFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::optional<std::string>& Reason() const { return reason_; }
    int Descriptor() const { return descriptor_; }

 private:
    std::optional<std::string> reason_;
    int descriptor_ = -1;
};

}  // namespace

std::string RecipeText(const Recipe& recipe) {
    Json json = {{"recipe", kRecipeVersion},
                 {"program", recipe.program},
                 {"module", {{"name", recipe.moduleName}, {"version", recipe.moduleVersion}}}};
    if (recipe.pixels) json["pixels"] = *recipe.pixels;
    json["renderer"] = recipe.renderer;
    Json& options = json["options"] = Json::object();
    for (const auto& [name, value] : recipe.options) options[name] = value;
    const Json preset = Json::parse(recipe.preset, nullptr, false);
    for (const char* key : kPresetKeys) {
        if (preset.is_object() && preset.contains(key)) json[key] = preset[key];
    }
    if (recipe.frame) {
        const bool isWhole = *recipe.frame == std::floor(*recipe.frame) && std::abs(*recipe.frame) < 1e15;
        json["frame"] = isWhole ? Json(static_cast<std::int64_t>(*recipe.frame)) : Json(*recipe.frame);
    }
    return json.dump(-1, ' ', true, Json::error_handler_t::replace);
}

Result<Recipe> ParseRecipe(const std::string& text, const std::string& file) {
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_object()) return Damaged(file, "the text is not whole");
    const auto version = WholeNumber(json, "recipe");
    if (!version) return Damaged(file, "\"recipe\" is not a whole number");
    if (*version > kRecipeVersion) {
        return Usage(
            fmt::format("the recipe of '{}' is of a newer program, {}: its form is {}, and umbrant {} reads up to "
                        "{}; draw with that program",
                        file, EchoText("umbrant " + TextOf(json, "program").value_or("")), *version, ProgramVersion(),
                        kRecipeVersion));
    }
    Recipe recipe;
    if (const auto reason = TakeParts(json, recipe)) return Damaged(file, *reason);
    if (recipe.pixels && !IsKnownPixelVersion(*recipe.pixels)) {
        return Usage(fmt::format(
            "'{}' was drawn by umbrant {} with pixel version {}, and umbrant {} draws versions {} and "
            "{}; draw with that program, or give the values with --preset and --set",
            file, EchoText(recipe.program), *recipe.pixels, ProgramVersion(), kExactPixelVersion, kPixelVersion));
    }
    return recipe;
}

Result<Recipe> ReadRecipe(const std::string& file) {
    const InputFile input(file);
    if (input.Reason()) {
        return Failure{ErrorKind::kFile, fmt::format("cannot read the recipe of '{}': {}", file, *input.Reason())};
    }
    const FoundRecipe found = FindRecipe(DescriptorBytes(input.Descriptor()));
    switch (found.kind) {
        case FoundRecipe::Kind::kFound:
            return ParseRecipe(found.text, file);
        case FoundRecipe::Kind::kDamaged:
            return Damaged(file, "the text is not whole");
        case FoundRecipe::Kind::kNone:
            return Usage(
                fmt::format("'{}' has no recipe: it was not drawn by `umbrant render`, or with --no-recipe, or "
                            "another program left the recipe out; give the values with --preset and --set",
                            file));
        case FoundRecipe::Kind::kNoFormat:
            break;
    }
    return Usage(
        fmt::format("'{}' cannot have a recipe: not a PNG, EXR, TIFF, JPEG, MOV, MP4, Matroska or WebM; name a "
                    "file that `umbrant render` wrote",
                    file));
}

}  // namespace umbrant::host
