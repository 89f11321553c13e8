// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// The effect, drawn from memory to memory by a program of your own:
//
//     umbrant::Effect effect;
//     effect.Set("style/distance", 80);
//     const umbrant::Image shadow = effect.Render({pixels, width, height});
//
// The pixels are those that `umbrant render` writes with the same parameters.
//
// Threads. Every call may be made on any thread. One effect draws on as many threads at once as call it, each frame
// with the values that held when it was asked for; several effects are independent of each other. A thread that drew by
// OpenGL keeps a context of its own, which is current when a call returns and goes when the thread ends: a program with
// OpenGL of its own draws on other threads than that. Frames inside the effect follow each other, as in every host; the
// work around them overlaps.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <umbrant/error.h>
#include <umbrant/export.h>
#include <umbrant/image.h>
#include <umbrant/parameter.h>

namespace umbrant {

/// What draws. Each effect has its own; no call changes the environment.
enum class Renderer {
    kAuto,  ///< UMBRANT_RENDERER ("gl", "cpu", "auto"), else OpenGL where hardware draws it, else the processor
    kOpenGL,
    kProcessor,
};

/// How an effect is made.
struct EffectOptions {
    /// The module's file. Empty: the environment variable UMBRANT_MODULE, else the first `umbrant2.so` in the folder of
    /// the program, of the shared library that this library is linked into, in the run path of either (where the CMake
    /// and pkg-config packages put the installed module's folder), or in an installed library folder.
    std::string module;
    Renderer renderer = Renderer::kAuto;
    /// Presents layers with their "Collapse Transformations" switch on: radial shadows then grow by their softness
    /// alone.
    bool collapsed = false;
    /// Called with the words that the effect has for its user beside a picture that it drew, which it seldom has; on
    /// the thread that draws.
    std::function<void(const std::string&)> message;
    /// How the users of the program can name a module; ends the sentence of the Error when none is found. Empty: how
    /// the program can.
    std::string moduleAdvice{};
};

/// How much a picture shows.
enum class Canvas {
    kGrow,   ///< layer and shadow together
    kLayer,  ///< the layer's frame
};

/// Frames a second as a fraction: {24, 1}, {30000, 1001}.
struct FrameRate {
    int frames = 24;
    int seconds = 1;
};

/// What one picture is drawn of besides the layer, and how. `FrameOptions{}` draws the effect alone, at its first
/// moment.
struct FrameOptions {
    Canvas canvas = Canvas::kGrow;

    /// A picture that lies in the shadow, for the effect's layer parameters; of any size and format. Without pixels:
    /// none.
    ImageView texture{};
    /// Where its top-left corner lies, in pixels of the full-size layer.
    double textureX = 0;
    double textureY = 0;

    /// The layer (and the texture) that is given has one n-th of its resolution, from 1 to 64: points and distances
    /// are still those of the full-size layer.
    int downsample = 1;
    /// The layer's full size; 0 takes the given size, n times.
    int layerWidth = 0;
    int layerHeight = 0;

    /// The moment, for keyframes and for the effect's clock; from -86400 to 86400.
    double seconds = 0;
    FrameRate rate{};
    double zeroFrame = 0;  ///< the frame at 0 s, where keyframes count in frames
};

/// An instance of the effect with its parameters. Move-only; a moved-from effect can only be destroyed or assigned to.
class UMBRANT_API Effect {
 public:
    /// Loads the module, unless another effect of the process has, and sets up an instance with default values.
    /// Throws ErrorCode::kModule when there is no module or it cannot be loaded, kUsage when UMBRANT_RENDERER makes no
    /// sense, kEffectFailed when the effect refuses to be set up.
    explicit Effect(const EffectOptions& options = {});
    /// Unloads the module with the last effect. No call of this effect may be under way.
    ~Effect();
    Effect(Effect&&) noexcept;
    Effect& operator=(Effect&&) noexcept;

    /// Sets a parameter by the path and the text that `umbrant render --set PATH=VALUE` takes; see ParameterKind.
    /// Keyframes that it had are gone. Throws kUsage with the nearest right names.
    void Set(std::string_view path, std::string_view value);
    /// The same for a number.
    void Set(std::string_view path, double value);
    /// The value in the form that Set takes; of a parameter with keyframes the value beside them. Throws kUsage.
    std::string Get(std::string_view path) const;
    /// All parameters have their defaults, and none keyframes.
    void Reset();

    /// Takes values and keyframes from a preset; parameters that it does not name stay as they are. Throws kUsage with
    /// every mistake, its line and column; `LoadPreset` kFile for a file that cannot be read as JSON.
    void ApplyPreset(std::string_view json);
    void LoadPreset(const std::string& file);
    /// Values and keyframes as a preset.
    std::string PresetText() const;

    /// All rows of the panel, in its order.
    std::vector<Parameter> Parameters() const;
    /// The row that a path or "#index" names. Throws kUsage.
    Parameter Find(std::string_view path) const;

    /// Draws. The picture has the layer's format, and its place says where it lies. Throws kUsage for a layer, a
    /// texture or options that make no sense, kEffectFailed with the effect's own words, kInternal when there is not
    /// enough memory.
    Image Render(const ImageView& layer, const FrameOptions& options = {}) const;
    /// Draws into the caller's pixels, which may be the layer's own: they must have the layer's format and the size of
    /// what Place answers, which for Canvas::kLayer is the layer's. Returns their place. Throws as Render.
    Rectangle RenderInto(const ImageView& layer, const MutableImageView& target,
                         const FrameOptions& options = {}) const;
    /// What a picture would cover, without drawing it. Throws as Render.
    Rectangle Place(const ImageView& layer, const FrameOptions& options = {}) const;

    /// The effect's name, as its module registers it.
    std::string Name() const;
    /// The module's file.
    std::string ModuleFile() const;
    /// What draws and why: "drawn by the processor: OpenGL is software, llvmpipe".
    std::string RendererText() const;
    /// kOpenGL or kProcessor.
    Renderer ChosenRenderer() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The library's version, "major.minor.fix".
UMBRANT_API std::string Version();

}  // namespace umbrant
