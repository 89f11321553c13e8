// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// Renders the effect from memory to memory:
//
//     umbrant::Effect effect;
//     effect.Set("style/distance", 80);
//     const umbrant::Image shadow = effect.Render({pixels, width, height});
//
// The pixels are those that `umbrant render` writes with the same parameters.
//
// Threads. Every call may be made on any thread. Several threads may render with one effect at the same time; a frame
// uses the values at the time of the call, or the Values that it is given. Effects are independent of each other.
// OpenGL is used on threads of the library only: no context is made current on a calling thread, and one that is
// current there stays so. With the CPU renderer a frame is drawn on the calling thread and a pool. Inside the module,
// frames are drawn one after the other, as in every host; the work before and after overlaps.
//
// Forks. A child of fork() may go on with the effects of its parent that use the CPU renderer, and make others. Where
// the parent had begun to use OpenGL, a frame with OpenGL fails in the child at once, and so does the creation of an
// effect with Renderer::kOpenGL, both with kEffectFailed; Renderer::kAuto then gives the CPU renderer.

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <umbrant/error.h>
#include <umbrant/export.h>
#include <umbrant/image.h>
#include <umbrant/parameter.h>
#include <umbrant/values.h>

namespace umbrant {

/// Selects the renderer of an effect. The environment is never changed.
enum class Renderer {
    kAuto,       ///< UMBRANT_RENDERER ("gl", "cpu", "auto"), else kOpenGL where OpenGL is hardware, else kProcessor
    kOpenGL,     ///< the GPU renderer
    kProcessor,  ///< the CPU renderer
};

/// Options for creating an effect.
struct EffectOptions {
    /// The module's file. Empty: the environment variable UMBRANT_MODULE, else the first `umbrant2.so` in the folder of
    /// the program, of the shared library that this library is linked into, in the run path of either (where the CMake
    /// and pkg-config packages put the installed module's folder), or in an installed library folder.
    std::string module;
    Renderer renderer = Renderer::kAuto;
    /// Presents layers with their "Collapse Transformations" switch on: radial shadows then grow only by their
    /// softness.
    bool collapsed = false;
    /// Called with a message that the effect returned with a successful frame (rare); on the thread that asked for the
    /// frame.
    std::function<void(const std::string&)> message;
    /// How users of the program can name a module; the last part of the Error's message when no module is found.
    /// Empty: advice for the program itself.
    std::string moduleAdvice{};
};

/// The rectangle that an image covers.
enum class Canvas {
    kGrow,   ///< the layer and its shadow
    kLayer,  ///< the layer's rectangle
};

/// Frames per second as a fraction: {24, 1}, {30000, 1001}.
struct FrameRate {
    int frames = 24;
    int seconds = 1;
};

/// A ratio of whole numbers, each from 1 to 1000000.
struct Fraction {
    int numerator = 1;
    int denominator = 1;
};

/// Options of one frame. `FrameOptions{}` has no texture and is at time 0.
struct FrameOptions {
    Canvas canvas = Canvas::kGrow;

    /// The texture of the shadow, for the effect's layer parameters; of any size and format. Without pixels: no
    /// texture.
    ImageView texture{};
    /// The position of its top-left corner, in pixels of the full-size layer.
    double textureX = 0;
    double textureY = 0;

    /// The resolution of the given layer (and texture) is 1/downsample, from 1 to 64; points and distances are still
    /// in pixels of the full-size layer.
    int downsample = 1;
    /// The layer's full size; 0 is the given size divided by its resolution (see also `scaleX`), rounded.
    int layerWidth = 0;
    int layerHeight = 0;

    /// The time, for keyframes and for the effect's clock; from -86400 to 86400.
    double seconds = 0;
    FrameRate rate{};
    double zeroFrame = 0;  ///< the frame at 0 s, for keyframes whose times are frames

    /// The resolution of the given layer (and texture) along each side as a fraction of the full size, for those that
    /// are not 1/n: {2, 3}. Multiplied by 1/downsample; the product is from 1/64 to 1. The effect scales points by both
    /// and lengths (distance, softness, buffer expansion) by `scaleX`.
    Fraction scaleX{};
    Fraction scaleY{};

    /// The width of a pixel over its height, from 1/100 to 100. For effects that ask for it; Umbrant 2 does not, and
    /// draws the same pixels at every ratio: its lengths are pixels along both sides.
    Fraction pixelAspect{};
};

/// An instance of the effect with its parameters. Move-only; a moved-from effect can only be destroyed or assigned to.
class UMBRANT_API Effect {
 public:
    /// Loads the module, unless another effect of the process has loaded it, and sets up an instance with default
    /// values. Throws ErrorCode::kModule when there is no module or it cannot be loaded, kUsage when UMBRANT_RENDERER
    /// has an invalid value, kEffectFailed when the effect refuses to be set up, kInternal when the system refuses the
    /// thread that OpenGL needs.
    explicit Effect(const EffectOptions& options = {});
    /// Unloads the module with the last effect. No call of this effect may be in progress.
    ~Effect();
    Effect(Effect&&) noexcept;
    Effect& operator=(Effect&&) noexcept;

    /// Sets a parameter by the path and the text that `umbrant render --set PATH=VALUE` takes; see ParameterKind.
    /// Removes its keyframes. Throws kUsage, whose message suggests the closest names.
    void Set(std::string_view path, std::string_view value);
    /// The same for a number.
    void Set(std::string_view path, double value);
    /// The same for a colour's numbers; see Color.
    void Set(std::string_view path, const Color& value);
    /// Returns the value in the form that Set takes; of a parameter with keyframes, its constant value, and of a colour
    /// that was set from numbers the nearest 8-bit one. Throws kUsage.
    std::string Get(std::string_view path) const;
    /// Sets all parameters to their defaults and removes all keyframes.
    void Reset();

    /// Sets the values and keyframes of a preset; other parameters do not change. Throws kUsage with all mistakes,
    /// their lines and columns; `LoadPreset` throws kFile for a file that cannot be read as JSON.
    void ApplyPreset(std::string_view json);
    void LoadPreset(const std::string& file);
    /// Returns values and keyframes as a preset; colours as Get returns them.
    std::string PresetText() const;

    /// Returns the values and keyframes of this moment, to be changed and given to frames.
    Values CurrentValues() const;

    /// Returns all rows of the panel, in its order.
    std::vector<Parameter> Parameters() const;
    /// Returns the row that a path or "#index" names. Throws kUsage.
    Parameter Find(std::string_view path) const;

    /// Renders one frame. The image has the layer's format; Image::Place is its rectangle. Throws kUsage for an
    /// invalid layer, texture or option, kEffectFailed with the effect's message, kInternal when there is not enough
    /// memory.
    Image Render(const ImageView& layer, const FrameOptions& options = {}) const;
    /// The same with these values instead of the effect's own. They are of this effect or of another one of the same
    /// module; throws kUsage for those of another module.
    Image Render(const ImageView& layer, const Values& values, const FrameOptions& options = {}) const;
    /// Renders into the caller's pixels, which may be the layer's own. They must have the layer's format and the size
    /// that Place returns; for Canvas::kLayer this is the layer's. Returns their rectangle. Throws as Render.
    Rectangle RenderInto(const ImageView& layer, const MutableImageView& target,
                         const FrameOptions& options = {}) const;
    Rectangle RenderInto(const ImageView& layer, const MutableImageView& target, const Values& values,
                         const FrameOptions& options = {}) const;
    /// Returns the rectangle that Render would cover, without rendering and without reading a pixel. Throws as Render.
    Rectangle Place(const ImageView& layer, const FrameOptions& options = {}) const;
    Rectangle Place(const ImageView& layer, const Values& values, const FrameOptions& options = {}) const;
    /// The same for a layer of this size, without its pixels. Of a texture only width and height are used; its pixels
    /// may be null. Takes no memory for an image.
    Rectangle Place(int width, int height, const FrameOptions& options = {}) const;
    Rectangle Place(int width, int height, const Values& values, const FrameOptions& options = {}) const;

    /// Returns the effect's name, as its module registers it.
    std::string Name() const;
    /// Returns the path of the module.
    std::string ModuleFile() const;
    /// Returns the renderer and the reason: "drawn by the CPU renderer: OpenGL is software, llvmpipe".
    std::string RendererText() const;
    /// Returns kOpenGL or kProcessor.
    Renderer ChosenRenderer() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};

/// Returns the library's version, "major.minor.fix".
UMBRANT_API std::string Version();

}  // namespace umbrant
