// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The interface's eleven functions over the library: pictures of 8 bits, red, green, blue, alpha in this order,
// straight alpha, and the shadow cut to the frame. Where the effect cannot draw, the frame has a hatched band, or
// passes through unchanged if UMBRANT_FREI0R is "pass", and the reason is logged once to standard error: a filter must
// never take its host down. An instance is driven by one thread at a time, instances by any number.

// The header declares C functions without extern "C"; they are the only exported names.
#pragma GCC visibility push(default)
extern "C" {
#include <frei0r.h>
}
#pragma GCC visibility pop

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <umbrant/effect.h>

#include "frei0r/error_band.h"
#include "frei0r/filter_parameters.h"

namespace {

constexpr char kVariable[] = "UMBRANT_FREI0R";
constexpr double kLongestTime = 24.0 * 60 * 60;

/// Logs a sentence that has not been logged yet.
void Report(const std::string& sentence) {
    static std::mutex mutex;
    static std::set<std::string> reported;
    const std::lock_guard lock(mutex);
    if (!reported.insert(sentence).second) return;
    std::fputs(("umbrant_frei0r: " + sentence + "\n").c_str(), stderr);
}

/// Whether frames that cannot be drawn pass through unchanged.
bool FramesPass() {
    const char* value = std::getenv(kVariable);
    return value && std::string_view(value) == "pass";
}

/// The reason why frames cannot be drawn, with what becomes of them.
void ReportFailure(const std::string& reason) {
    Report(reason + (FramesPass() ? "; frames pass through unchanged"
                                  : "; frames have a hatched band (UMBRANT_FREI0R=pass: they pass through unchanged)"));
}

/// Another value than "pass" changes nothing, which is reported: whoever sets it expects an effect.
void CheckVariable() {
    const char* value = std::getenv(kVariable);
    if (!value || *value == '\0' || FramesPass()) return;
    Report(std::string(kVariable) + " is \"" + value + "\", which means nothing; it must be \"pass\" or not set");
}

/// Runs something that may fail; returns whether it did not.
template <typename Action>
bool Try(Action action) noexcept {
    try {
        action();
        return true;
    } catch (const std::exception& problem) {
        try {
            ReportFailure(problem.what());
        } catch (...) {
        }
    } catch (...) {
        // A failure without a reason: the frame shows it.
    }
    return false;
}

/// A filter as a host has it.
class Filter {
 public:
    Filter(int width, int height) : width_(width), height_(height) {
        for (const FilterParameter& parameter : FilterParameters()) values_.push_back(parameter.standard);
        umbrant::EffectOptions options;
        options.moduleAdvice =
            "put umbrant2.so into the filter's folder, or set the environment variable UMBRANT_MODULE to its file";
        CheckVariable();
        Try([&] { effect_ = std::make_unique<umbrant::Effect>(options); });
    }

    /// The host sets all parameters for every frame; what is as it was costs nothing.
    void Set(std::size_t index, const FilterValue& value) {
        const std::lock_guard lock(mutex_);
        if (values_[index] == value) return;
        values_[index] = value;
        changed_.insert(index);
    }

    FilterValue Get(std::size_t index) const {
        const std::lock_guard lock(mutex_);
        return values_[index];
    }

    void Draw(double seconds, const std::uint32_t* from, std::uint32_t* to) {
        const std::lock_guard lock(mutex_);
        const bool drawn = effect_ && Try([&] {
                               for (; !changed_.empty(); changed_.erase(changed_.begin())) {
                                   const FilterParameter& parameter = FilterParameters()[*changed_.begin()];
                                   effect_->Set(parameter.path, EffectText(parameter, values_[*changed_.begin()]));
                               }
                               umbrant::FrameOptions options;
                               options.canvas = umbrant::Canvas::kLayer;
                               options.seconds =
                                   std::isfinite(seconds) ? std::clamp(seconds, -kLongestTime, kLongestTime) : 0;
                               effect_->RenderInto({from, width_, height_, umbrant::PixelFormat::kRgba8},
                                                   {to, width_, height_, umbrant::PixelFormat::kRgba8}, options);
                           });
        if (drawn) return;
        if (from != to) {
            std::memmove(to, from, 4 * static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
        }
        if (!FramesPass()) DrawErrorBand(to, width_, height_);
    }

 private:
    const int width_;
    const int height_;
    mutable std::mutex mutex_;
    std::vector<FilterValue> values_;
    std::set<std::size_t> changed_;
    std::unique_ptr<umbrant::Effect> effect_;  ///< null where it cannot be had
};

Filter* FilterOf(f0r_instance_t instance) {
    return static_cast<Filter*>(instance);
}

const FilterParameter* ParameterAt(int index) {
    const auto& all = FilterParameters();
    return index >= 0 && static_cast<std::size_t>(index) < all.size() ? &all[static_cast<std::size_t>(index)] : nullptr;
}

int TypeOf(FilterKind kind) {
    return kind == FilterKind::kColor   ? F0R_PARAM_COLOR
           : kind == FilterKind::kPlace ? F0R_PARAM_POSITION
                                        : F0R_PARAM_DOUBLE;
}

}  // namespace

extern "C" {

int f0r_init(void) {
    return 1;
}

void f0r_deinit(void) {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
    info->name = "Umbrant 2";
    info->author = "the Umbrant authors";
    info->plugin_type = F0R_PLUGIN_TYPE_FILTER;
    info->color_model = F0R_COLOR_MODEL_RGBA8888;
    info->frei0r_version = FREI0R_MAJOR_VERSION;
    info->major_version = UMBRANT_MAJOR;
    info->minor_version = UMBRANT_MINOR;
    info->num_params = static_cast<int>(FilterParameters().size());
    info->explanation = "A long, soft shadow of what is not transparent, cut to the frame";
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
    const FilterParameter* parameter = ParameterAt(index);
    if (!parameter) return;
    info->name = parameter->name;
    info->type = TypeOf(parameter->kind);
    info->explanation = parameter->explanation;
}

f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
    Filter* filter = nullptr;
    Try([&] { filter = new Filter(static_cast<int>(width), static_cast<int>(height)); });
    return filter;
}

void f0r_destruct(f0r_instance_t instance) {
    delete FilterOf(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
    const FilterParameter* parameter = ParameterAt(index);
    if (!parameter || !param || !instance) return;
    FilterValue value{};
    if (parameter->kind == FilterKind::kColor) {
        const auto* color = static_cast<const f0r_param_color_t*>(param);
        value = {color->r, color->g, color->b};
    } else if (parameter->kind == FilterKind::kPlace) {
        const auto* place = static_cast<const f0r_param_position_t*>(param);
        value = {place->x, place->y};
    } else {
        value = {*static_cast<const f0r_param_double*>(param)};
    }
    Try([&] { FilterOf(instance)->Set(static_cast<std::size_t>(index), value); });
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t param, int index) {
    const FilterParameter* parameter = ParameterAt(index);
    if (!parameter || !param || !instance) return;
    const FilterValue value = FilterOf(instance)->Get(static_cast<std::size_t>(index));
    if (parameter->kind == FilterKind::kColor) {
        auto* color = static_cast<f0r_param_color_t*>(param);
        color->r = static_cast<float>(value[0]);
        color->g = static_cast<float>(value[1]);
        color->b = static_cast<float>(value[2]);
    } else if (parameter->kind == FilterKind::kPlace) {
        auto* place = static_cast<f0r_param_position_t*>(param);
        place->x = value[0];
        place->y = value[1];
    } else {
        *static_cast<f0r_param_double*>(param) = value[0];
    }
}

void f0r_update(f0r_instance_t instance, double time, const uint32_t* inframe, uint32_t* outframe) {
    if (instance) FilterOf(instance)->Draw(time, inframe, outframe);
}

void f0r_update2(f0r_instance_t instance, double time, const uint32_t* inframe1, const uint32_t*, const uint32_t*,
                 uint32_t* outframe) {
    f0r_update(instance, time, inframe1, outframe);
}

}  // extern "C"
