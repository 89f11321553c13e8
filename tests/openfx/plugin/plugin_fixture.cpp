// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Translates settings and images between the library and the plug-in.

#include "tests/openfx/plugin/plugin_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace umbrant::ofx {

namespace {

umbrant::Effect& Library() {
    static umbrant::Effect* effect = [] {
        umbrant::EffectOptions options;
        options.module = UMBRANT_MODULE_FILE;
        options.renderer = umbrant::Renderer::kProcessor;
        // Lives to the end: the plug-in's own module comes and goes.
        return new umbrant::Effect(options);
    }();
    return *effect;
}

/// The text of a popup's item as the panel shows it.
std::string ItemText(const std::string& path, const std::string& value) {
    const umbrant::Parameter row = Library().Find(path);
    for (std::size_t i = 0; i < row.items.size(); ++i) {
        if (row.items[i] == value) return row.itemNames.at(i);
    }
    throw std::out_of_range(path + " has no item " + value);
}

void SetParam(Instance& instance, const std::string& path, const std::string& value, const OfxRectI& bounds) {
    const std::string name = ParamName(path);
    Param* param = instance.FindParam(name);
    ASSERT_NE(param, nullptr) << "no parameter " << name;
    const std::string type(param->Type().name);
    if (type == "OfxParamTypeChoice") {
        instance.SetChoice(name, ItemText(path, value));
    } else if (type == "OfxParamTypeRGB") {
        ParamValue colour;
        for (std::size_t c = 0; c < 3; ++c)
            colour.emplace_back(std::stoi(value.substr(1 + 2 * c, 2), nullptr, 16) / 255.0);
        instance.Set(name, colour);
    } else if (type == "OfxParamTypeDouble2D") {
        const std::size_t comma = value.find(',');
        const double x = std::stod(value.substr(0, comma)), y = std::stod(value.substr(comma + 1));
        instance.Set(name, ParamValue{bounds.x1 + x, bounds.y2 - y});
    } else {
        instance.Set(name, std::stod(value));
    }
}

/// The image's channels from the top row down, as the library takes them.
template <typename Channel>
std::vector<Channel> TopDown(const Picture& picture) {
    std::vector<Channel> channels;
    for (int y = picture.bounds.y2 - 1; y >= picture.bounds.y1; --y) {
        for (int x = picture.bounds.x1; x < picture.bounds.x2; ++x) {
            for (int c = 0; c < 4; ++c) channels.push_back(static_cast<Channel>(picture.At(x, y)[c]));
        }
    }
    return channels;
}

struct View {
    explicit View(const Picture& picture)
        : bytes(picture.depth == Depth::kByte ? TopDown<std::uint8_t>(picture) : std::vector<std::uint8_t>()),
          floats(picture.depth == Depth::kFloat ? TopDown<float>(picture) : std::vector<float>()) {
        const int width = WidthOf(picture.bounds), height = HeightOf(picture.bounds);
        view = picture.depth == Depth::kByte ? umbrant::ImageView(bytes.data(), width, height)
                                             : umbrant::ImageView(floats.data(), width, height);
    }
    std::vector<std::uint8_t> bytes;
    std::vector<float> floats;
    umbrant::ImageView view;
};

}  // namespace

std::string Bundle() {
    const char* path = std::getenv("UMBRANT_OPENFX_BUNDLE");
    return path != nullptr ? path : OPENFX_BUNDLE;
}

std::string ParamName(std::string path) {
    std::replace_if(
        path.begin(), path.end(), [](char c) { return c == '/' || c == '-'; }, '_');
    return path;
}

Session::Session(HostOptions options, const std::string& context) : host_(std::move(options)), context_(context) {
    setenv("UMBRANT_RENDERER", "cpu", 1);
    std::string error;
    plugIn_ = PlugIn::Open(host_, Bundle(), error);
    EXPECT_NE(plugIn_, nullptr) << error;
    if (plugIn_ == nullptr) throw std::runtime_error(error);
    const OfxStatus status = plugIn_->Start();
    EXPECT_EQ(status, kOfxStatOK) << StatusName(status);
    instance_ = NewInstance();
    EXPECT_NE(instance_, nullptr);
    if (instance_ == nullptr) throw std::runtime_error("no instance");
}

Session::~Session() {
    instance_.reset();
    plugIn_->Unload();
    EXPECT_EQ(host_.record.ViolationText(), "");
}

std::unique_ptr<Instance> Session::NewInstance() {
    OfxStatus status = kOfxStatOK;
    return Instance::Create(*plugIn_, context_, status);
}

void Session::Apply(Instance& instance, const Settings& settings, const OfxRectI& bounds) {
    for (const auto& [path, value] : settings) SetParam(instance, path, value, bounds);
}

Picture FromLibrary(const Picture& source, const Settings& settings, umbrant::FrameOptions options,
                    const Picture* texture) {
    umbrant::Values values = Library().CurrentValues();
    for (const auto& [path, value] : settings) values.Set(path, std::string_view(value));
    const View layer(source);
    std::unique_ptr<View> second;
    if (texture != nullptr) {
        second = std::make_unique<View>(*texture);
        options.texture = second->view;
    }
    const umbrant::Image image = Library().Render(layer.view, values, options);
    const umbrant::Rectangle& place = image.Place();
    const OfxRectI& at = source.bounds;
    Picture picture({at.x1 + place.left, at.y2 - place.bottom, at.x1 + place.right, at.y2 - place.top}, source.depth);
    std::size_t next = 0;
    for (int y = picture.bounds.y2 - 1; y >= picture.bounds.y1; --y) {
        for (int x = picture.bounds.x1; x < picture.bounds.x2; ++x) {
            for (int c = 0; c < 4; ++c, ++next) {
                picture.At(x, y)[c] =
                    source.depth == Depth::kByte ? static_cast<float>(image.Bytes()[next]) : image.Floats()[next];
            }
        }
    }
    return picture;
}

std::vector<umbrant::Parameter> PanelRows() {
    return Library().Parameters();
}

std::string PresetOf(const Settings& settings) {
    for (const auto& [path, value] : settings) Library().Set(path, std::string_view(value));
    std::string text = Library().PresetText();
    Library().Reset();
    return text;
}

const Settings& ManySettings() {
    static const Settings settings = {
        {"style/angle", "115"},
        {"style/distance", "14"},
        {"style/softness", "9"},
        {"style/color", "#c04010"},
        {"style/blend-mode", "multiply"},
        {"opacity/opacity-start", "70"},
        {"opacity/opacity-end", "30"},
        {"opacity/opacity-master", "90"},
        {"easing/mode", "ease-in-out"},
        {"easing/ease", "60"},
        {"easing/advanced/distance", "40"},
        {"quality/samples", "7"},
        {"quality/resolution", "extreme"},
        {"compositing/source-opacity", "85"},
    };
    return settings;
}

const Settings& SmallSettings() {
    static const Settings settings = {{"style/distance", "3"}, {"style/softness", "2"}, {"quality/samples", "2"}};
    return settings;
}

Picture FromPlugIn(Session& session, Inputs inputs, const Settings& settings, const FrameOptions& options) {
    const OfxRectI bounds = inputs.source.bounds;
    session.TheInstance().Connect(std::move(inputs));
    session.Apply(settings, bounds);
    const Frame frame = session.TheInstance().Render(options);
    EXPECT_EQ(frame.status, kOfxStatOK) << StatusName(frame.status);
    return frame.output;
}

}  // namespace umbrant::ofx
