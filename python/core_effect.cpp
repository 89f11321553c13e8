// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The library's classes for umbrant/_effect.py. Every call of the library releases the interpreter's lock, because any
// may wait for another thread; only the values of a frame are changed and copied under it, which protects them.

#include "python/core_effect.h"

#include <umbrant/effect.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "python/interpreter_lock.h"
#include "python/pixel_buffer.h"
#include "python/records.h"

namespace umbrant::python {

namespace py = pybind11;

namespace {

/// The effect's messages of the frames that the calling thread drew. Python gets them after the frame: the library
/// calls back without the interpreter's lock, and a thread of an ending interpreter must not take it there.
thread_local std::vector<std::string> messages;

py::list TakeMessages() {
    py::list taken;
    for (const std::string& message : std::exchange(messages, {})) taken.append(StrOf(message));
    return taken;
}

/// An effect whose calls release the interpreter's lock.
class CoreEffect {
 public:
    explicit CoreEffect(const EffectOptions& options)
        : effect_(WithoutLock([&] { return std::make_unique<Effect>(options); })) {}
    ~CoreEffect() {
        WithoutLock([&] { effect_.reset(); });
    }
    CoreEffect(const CoreEffect&) = delete;
    CoreEffect& operator=(const CoreEffect&) = delete;

    template <typename Work>
    auto Call(const Work& work) {
        return WithoutLock([&] { return work(*effect_); });
    }

 private:
    std::unique_ptr<Effect> effect_;
};

std::unique_ptr<CoreEffect> MakeEffect(const std::string& module, int renderer, bool collapsed) {
    EffectOptions options;
    options.module = module;
    options.renderer = static_cast<Renderer>(renderer);
    options.collapsed = collapsed;
    options.message = [](const std::string& message) { messages.push_back(message); };
    options.moduleAdvice =
        "name one with umbrant.Effect(module=...) or the environment variable UMBRANT_MODULE, or install the package "
        "of the program umbrant";
    return std::make_unique<CoreEffect>(options);
}

/// What the frame of a call is drawn of. Created and destroyed with the interpreter's lock.
class FrameInputs {
 public:
    FrameInputs(const FrameOptions& options, const py::object& texture, const Values* values) : options_(options) {
        if (values) values_ = *values;
        if (!texture.is_none()) texture_.emplace(texture, "the texture");
    }

    /// Calls work(options), or work(values, options) where values were given. May be called without the lock.
    template <typename Work>
    auto With(const Work& work) {
        if (texture_) options_.texture = texture_->View();
        return values_ ? work(*values_, options_) : work(options_);
    }

 private:
    FrameOptions options_;
    std::optional<ReadPixels> texture_;
    std::optional<Values> values_;
};

Image Render(CoreEffect& core, const py::object& array, const FrameOptions& options, const py::object& texture,
             const Values* values) {
    messages.clear();
    ReadPixels layer(array, "the layer");
    FrameInputs inputs(options, texture, values);
    return core.Call([&](const Effect& effect) {
        const ImageView view = layer.View();
        return inputs.With([&](const auto&... frame) { return effect.Render(view, frame...); });
    });
}

py::object RenderInto(CoreEffect& core, const py::object& array, const py::object& output, const FrameOptions& options,
                      const py::object& texture, const Values* values) {
    messages.clear();
    ReadPixels layer(array, "the layer");
    const PixelBuffer target(output, "the target");
    target.RequireWritable();
    FrameInputs inputs(options, texture, values);
    return RectangleOf(core.Call([&](const Effect& effect) {
        const ImageView view = layer.View();
        const auto draw = [&](const MutableImageView& pixels) {
            return inputs.With([&](const auto&... frame) { return effect.RenderInto(view, pixels, frame...); });
        };
        if (target.HasPlainRows()) return draw(target.View());
        Image image = target.Copy();
        const Rectangle place = draw(image.View());
        target.Assign(image);
        return place;
    }));
}

py::object Place(CoreEffect& core, int width, int height, const FrameOptions& options, const py::object& texture,
                 const Values* values) {
    FrameInputs inputs(options, texture, values);
    return RectangleOf(core.Call([&](const Effect& effect) {
        return inputs.With([&](const auto&... frame) { return effect.Place(width, height, frame...); });
    }));
}

py::list Parameters(CoreEffect& core) {
    py::list rows;
    for (const Parameter& row : core.Call([](const Effect& effect) { return effect.Parameters(); })) {
        rows.append(ParameterOf(row));
    }
    return rows;
}

py::bytes ModuleFile(CoreEffect& core) {
    return core.Call([](const Effect& effect) { return effect.ModuleFile(); });
}

template <std::string (Effect::*kText)() const>
py::str TextOf(CoreEffect& core) {
    return StrOf(core.Call([](const Effect& effect) { return (effect.*kText)(); }));
}

}  // namespace

void AddFrameOptions(py::module_& module) {
    py::class_<FrameOptions>(module, "FrameOptions")
        .def(py::init<>())
        .def("set_canvas",
             [](FrameOptions& options, bool isLayer) { options.canvas = isLayer ? Canvas::kLayer : Canvas::kGrow; })
        .def("set_texture_at",
             [](FrameOptions& options, double x, double y) {
                 options.textureX = x;
                 options.textureY = y;
             })
        .def("set_downsample", [](FrameOptions& options, int value) { options.downsample = value; })
        .def("set_layer_size",
             [](FrameOptions& options, int width, int height) {
                 options.layerWidth = width;
                 options.layerHeight = height;
             })
        .def("set_time",
             [](FrameOptions& options, double seconds, double zeroFrame) {
                 options.seconds = seconds;
                 options.zeroFrame = zeroFrame;
             })
        .def("set_rate",
             [](FrameOptions& options, int frames, int seconds) {
                 options.rate = {frames, seconds};
             })
        .def("set_scale_x",
             [](FrameOptions& options, int above, int below) {
                 options.scaleX = {above, below};
             })
        .def("set_scale_y",
             [](FrameOptions& options, int above, int below) {
                 options.scaleY = {above, below};
             })
        .def("set_pixel_aspect", [](FrameOptions& options, int above, int below) {
            options.pixelAspect = {above, below};
        });
}

void AddValues(py::module_& module) {
    py::class_<Values>(module, "Values")
        .def(py::init<const Values&>())
        .def("set_text",
             [](Values& values, const std::string& path, const std::string& text) { values.Set(path, text); })
        .def("set_number", [](Values& values, const std::string& path, double number) { values.Set(path, number); })
        .def("set_color",
             [](Values& values, const std::string& path, float red, float green, float blue) {
                 values.Set(path, Color{red, green, blue});
             })
        .def("get", [](const Values& values, const std::string& path) { return StrOf(values.Get(path)); });
}

void AddEffect(py::module_& module) {
    module.def("take_messages", TakeMessages);
    py::class_<CoreEffect>(module, "Effect")
        .def(py::init(&MakeEffect))
        .def("set_text", [](CoreEffect& core, const std::string& path,
                            const std::string& text) { core.Call([&](Effect& effect) { effect.Set(path, text); }); })
        .def("set_number", [](CoreEffect& core, const std::string& path,
                              double number) { core.Call([&](Effect& effect) { effect.Set(path, number); }); })
        .def("set_color",
             [](CoreEffect& core, const std::string& path, float red, float green, float blue) {
                 core.Call([&](Effect& effect) { effect.Set(path, Color{red, green, blue}); });
             })
        .def("get",
             [](CoreEffect& core, const std::string& path) {
                 return StrOf(core.Call([&](const Effect& effect) { return effect.Get(path); }));
             })
        .def("reset", [](CoreEffect& core) { core.Call([](Effect& effect) { effect.Reset(); }); })
        .def("apply_preset",
             [](CoreEffect& core, const std::string& json) {
                 core.Call([&](Effect& effect) { effect.ApplyPreset(json); });
             })
        .def("load_preset",
             [](CoreEffect& core, const std::string& file) {
                 core.Call([&](Effect& effect) { effect.LoadPreset(file); });
             })
        .def("preset_text", TextOf<&Effect::PresetText>)
        .def("current_values",
             [](CoreEffect& core) { return core.Call([](const Effect& effect) { return effect.CurrentValues(); }); })
        .def("parameters", Parameters)
        .def("find",
             [](CoreEffect& core, const std::string& path) {
                 return ParameterOf(core.Call([&](const Effect& effect) { return effect.Find(path); }));
             })
        .def("render", Render)
        .def("render_into", RenderInto)
        .def("place", Place)
        .def("name", TextOf<&Effect::Name>)
        .def("module_file", ModuleFile)
        .def("renderer_text", TextOf<&Effect::RendererText>)
        .def("uses_opengl", [](CoreEffect& core) {
            return core.Call([](const Effect& effect) { return effect.ChosenRenderer() == Renderer::kOpenGL; });
        });
}

}  // namespace umbrant::python
