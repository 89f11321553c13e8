// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The filter as a host drives it, function by function: its parameters beside the effect's, its pixels beside those of
// the program, and threads.

#include <gmock/gmock.h>

#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "frei0r/filter_parameters.h"
#include "tests/frei0r/filter.h"
#include "tests/host/library/library_fixture.h"

using namespace umbrant::host;

namespace {

/// A picture whose memory hosts hand over as it is.
Frame FrameOf(const Pixels<std::uint8_t>& pixels) {
    Frame frame(pixels.channels.size() / 4);
    std::memcpy(frame.data(), pixels.channels.data(), pixels.channels.size());
    return frame;
}

class FilterTest : public testing::Test {
 protected:
    FilterTest() {
        setenv("UMBRANT_MODULE", UMBRANT_MODULE_FILE, 1);
        setenv("UMBRANT_RENDERER", "cpu", 1);
    }

    /// What the program makes of the picture with these settings.
    Frame FromProgram(const Pixels<std::uint8_t>& pixels, const std::vector<std::string>& settings) const {
        const auto written = WritePicture(folder_ / "in.png", WorldOfPixels(pixels),
                                          {{0, 0, pixels.width, pixels.height}, pixels.width, pixels.height});
        EXPECT_TRUE(written);
        std::vector<std::string> arguments = {"render",     "in.png", "-o",       "out.png",
                                              "--canvas",   "layer",  "--module", UMBRANT_MODULE_FILE,
                                              "--renderer", "cpu"};
        for (const std::string& setting : settings) arguments.insert(arguments.end(), {"--set", setting});
        const Outcome outcome = RunUmbrant(folder_, arguments);
        EXPECT_EQ(outcome.code, 0) << outcome.err;
        Picture picture = Read(folder_ / "out.png");
        Pixels<std::uint8_t> out{pixels.width, pixels.height, {}};
        for (int y = 0; y < pixels.height; ++y) {
            for (int x = 0; x < pixels.width; ++x) {
                const PF_Pixel& pixel = Pixel8(picture.pixels, x, y);
                out.channels.insert(out.channels.end(), {pixel.red, pixel.green, pixel.blue, pixel.alpha});
            }
        }
        return FrameOf(out);
    }

    const Folder folder_;
    const LoadedFilter filter_;
};

TEST_F(FilterTest, WhatItIs) {
    EXPECT_EQ(filter_.init(), 1);
    const f0r_plugin_info_t info = filter_.Info();
    EXPECT_STREQ(info.name, "Umbrant 2");
    EXPECT_STREQ(info.author, "the Umbrant authors");
    EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
    EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_EQ(info.frei0r_version, 1);
    EXPECT_EQ(info.num_params, 19);
    EXPECT_STRNE(info.explanation, "");
    filter_.deinit();
}

TEST_F(FilterTest, ExportsTheInterfaceAlone) {
    std::istringstream symbols(RunProgram({"nm", "-D", "--defined-only", FREI0R_FILTER}).output);
    std::set<std::string> names;
    for (std::string address, type, name; symbols >> address >> type >> name;) names.insert(name);
    EXPECT_EQ(names, (std::set<std::string>{"f0r_init", "f0r_deinit", "f0r_get_plugin_info", "f0r_get_param_info",
                                            "f0r_construct", "f0r_destruct", "f0r_set_param_value",
                                            "f0r_get_param_value", "f0r_update", "f0r_update2"}));
}

TEST_F(FilterTest, ParametersAreTheEffects) {
    const umbrant::Effect effect;
    std::set<std::string> names;
    const auto& all = FilterParameters();
    ASSERT_EQ(static_cast<int>(all.size()), filter_.Info().num_params);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const FilterParameter& parameter = all[i];
        SCOPED_TRACE(parameter.path);
        const f0r_param_info_t info = filter_.Param(static_cast<int>(i));
        EXPECT_STREQ(info.name, parameter.name);
        EXPECT_STRNE(info.explanation, "");
        EXPECT_TRUE(names.insert(info.name).second) << "hosts distinguish them by name";
        const umbrant::Parameter declared = effect.Find(parameter.path);
        using umbrant::ParameterKind;
        switch (parameter.kind) {
            case FilterKind::kNumber:
                EXPECT_EQ(info.type, F0R_PARAM_DOUBLE);
                if (declared.kind == ParameterKind::kAngle) break;
                // The slider's range as far as it is allowed, or all that is allowed where the default is beyond it.
                {
                    double low = std::max(declared.minimum, declared.sliderMinimum);
                    double high = std::min(declared.maximum, declared.sliderMaximum);
                    const double standard = declared.defaultNumbers.at(0);
                    const bool isSamples = std::string(parameter.path) == "quality/samples";
                    if (standard < low || standard > high || isSamples) low = declared.minimum, high = declared.maximum;
                    EXPECT_EQ(parameter.low, low);
                    EXPECT_EQ(parameter.high, high);
                    EXPECT_NEAR(low + parameter.standard[0] * (high - low), standard, 1e-9);
                }
                break;
            case FilterKind::kItem: {
                EXPECT_EQ(info.type, F0R_PARAM_DOUBLE);
                std::vector<std::string> items;
                for (const std::string& item : declared.items) {
                    if (!item.empty()) items.push_back(item);
                }
                EXPECT_EQ(std::vector<std::string>(parameter.items.begin(), parameter.items.end()), items);
                EXPECT_EQ(EffectText(parameter, parameter.standard), declared.defaultText);
                break;
            }
            case FilterKind::kColor:
                EXPECT_EQ(info.type, F0R_PARAM_COLOR);
                EXPECT_EQ(EffectText(parameter, parameter.standard), declared.defaultText);
                break;
            case FilterKind::kPlace:
                EXPECT_EQ(info.type, F0R_PARAM_POSITION);
                EXPECT_EQ(declared.defaultNumbers, (std::vector<double>{0, 0}));
                break;
        }
        // What a host gets for the default, and sets again, is the effect's default, to the last bit.
        umbrant::Effect set;
        set.Set(parameter.path, EffectText(parameter, parameter.standard));
        EXPECT_EQ(set.Get(parameter.path), effect.Get(parameter.path));
    }
}

TEST_F(FilterTest, ValuesBetweenZeroAndOne) {
    std::map<std::string, const FilterParameter*> byPath;
    for (const FilterParameter& parameter : FilterParameters()) byPath[parameter.path] = &parameter;
    const struct {
        const char* path;
        FilterValue value;
        const char* text;
    } rows[] = {
        {"style/distance", {0.04}, "80.0000"},
        {"style/distance", {-3}, "0.0000"},
        {"style/distance", {7}, "2000.0000"},
        {"style/distance", {std::nan("")}, "0.0000"},
        {"opacity/opacity-start", {0.29}, "29.0000"},
        {"style/angle", {0.125}, "45.0000"},
        {"style/shadow-type", {0.5}, "inner"},
        {"style/shadow-type", {0.76}, "radial"},
        {"style/blend-mode", {1.0 / 11}, "add"},
        {"style/blend-mode", {1}, "darker-color"},
        {"quality/resolution", {0.25}, "low"},
        {"style/color", {1, 0.5, 2.0 / 255}, "#ff8002"},
        {"style/color", {-1, 9, std::nan("")}, "#00ff00"},
        {"style/origin", {0.25, 1}, "25.0000%,100.0000%"},
    };
    for (const auto& row : rows) EXPECT_EQ(EffectText(*byPath.at(row.path), row.value), row.text) << row.path;
}

TEST_F(FilterTest, ParametersAreGivenBack) {
    const f0r_instance_t instance = filter_.construct(8, 8);
    ASSERT_TRUE(instance);
    for (int i = 0; i < filter_.Info().num_params; ++i) {
        SCOPED_TRACE(filter_.Param(i).name);
        if (filter_.Param(i).type == F0R_PARAM_COLOR) {
            f0r_param_color_t color{0.25f, 0.5f, 1}, back{};
            filter_.set(instance, &color, i);
            filter_.get(instance, &back, i);
            EXPECT_EQ(back.r, 0.25f);
            EXPECT_EQ(back.g, 0.5f);
            EXPECT_EQ(back.b, 1);
        } else if (filter_.Param(i).type == F0R_PARAM_POSITION) {
            f0r_param_position_t place{0.25, 0.75}, back{};
            filter_.set(instance, &place, i);
            filter_.get(instance, &back, i);
            EXPECT_EQ(back.x, 0.25);
            EXPECT_EQ(back.y, 0.75);
        } else {
            double value = -1;
            filter_.get(instance, &value, i);
            EXPECT_EQ(value, FilterParameters()[static_cast<std::size_t>(i)].standard[0]);
            double other = 0.625;
            filter_.set(instance, &other, i);
            filter_.get(instance, &value, i);
            EXPECT_EQ(value, 0.625);
        }
    }
    double untouched = 5;
    filter_.get(instance, &untouched, 99);
    filter_.set(instance, &untouched, -1);
    EXPECT_EQ(untouched, 5) << "there are no such parameters";
    filter_.destruct(instance);
}

TEST_F(FilterTest, PixelsAreTheProgramsOwn) {
    const auto picture = Disc8(61, 43);
    const Frame in = FrameOf(picture);
    Frame out(in.size(), 0x12345678);
    const f0r_instance_t instance = filter_.construct(61, 43);
    ASSERT_TRUE(instance);
    filter_.update(instance, 0, in.data(), out.data());
    EXPECT_EQ(out, FromProgram(picture, {})) << "every default";
    EXPECT_NE(out, in);

    double distance = 0.02, angle = 45 / 360.0, softness = 0.03, type = 0;
    f0r_param_color_t color{1, 0.5f, 0};
    filter_.set(instance, &distance, filter_.IndexOf("Distance"));
    filter_.set(instance, &angle, filter_.IndexOf("Angle"));
    filter_.set(instance, &softness, filter_.IndexOf("Softness"));
    filter_.set(instance, &color, filter_.IndexOf("Color"));
    filter_.update2(instance, 2.5, in.data(), nullptr, nullptr, out.data());
    const std::vector<std::string> settings = {"style/distance=40", "style/angle=45", "style/softness=15",
                                               "style/color=#ff8000"};
    EXPECT_EQ(out, FromProgram(picture, settings));

    Frame same = in;
    filter_.update(instance, 0, same.data(), same.data());
    EXPECT_EQ(same, out) << "in place";

    for (const char* name : {"inner", "radial"}) {
        type += 0.5;
        f0r_param_position_t origin{0.25, 0.75};
        filter_.set(instance, &type, filter_.IndexOf("Shadow type"));
        filter_.set(instance, &origin, filter_.IndexOf("Origin"));
        filter_.update(instance, 0, in.data(), out.data());
        auto more = settings;
        more.insert(more.end(), {std::string("style/shadow-type=") + name, "style/origin=25%,75%"});
        EXPECT_EQ(out, FromProgram(picture, more)) << name;
    }
    filter_.destruct(instance);
}

TEST_F(FilterTest, InstancesOnManyThreads) {
    struct Job {
        int width;
        double distance;
        Frame expected;
        Frame in;
    };
    std::vector<Job> jobs;
    for (int i = 0; i < 4; ++i) {
        const auto picture = Disc8(24 + 8 * i, 30);
        jobs.push_back({24 + 8 * i, (10 + 10 * i) / 2000.0,
                        FromProgram(picture, {"style/distance=" + std::to_string(10 + 10 * i)}), FrameOf(picture)});
    }
    std::vector<int> wrong(jobs.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int life = 0; life < 3; ++life) {
                const f0r_instance_t instance = filter_.construct(static_cast<unsigned>(jobs[i].width), 30);
                for (int frame = 0; frame < 4; ++frame) {
                    Frame out(jobs[i].in.size());
                    filter_.set(instance, &jobs[i].distance, filter_.IndexOf("Distance"));
                    filter_.update(instance, frame / 25.0, jobs[i].in.data(), out.data());
                    wrong[i] += out != jobs[i].expected;
                }
                filter_.destruct(instance);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, std::vector<int>(jobs.size(), 0));
}

TEST_F(FilterTest, OneInstanceHandedFromThreadToThread) {
    const auto picture = Disc8(32, 32);
    const Frame expected = FromProgram(picture, {}), in = FrameOf(picture);
    const f0r_instance_t instance = filter_.construct(32, 32);
    for (int i = 0; i < 4; ++i) {
        Frame out(in.size());
        std::thread([&] { filter_.update(instance, i, in.data(), out.data()); }).join();
        EXPECT_EQ(out, expected);
    }
    filter_.destruct(instance);
}

TEST_F(FilterTest, TimesThatMakeNoSense) {
    const auto picture = Disc8(16, 16);
    const Frame in = FrameOf(picture), expected = FromProgram(picture, {});
    const f0r_instance_t instance = filter_.construct(16, 16);
    for (const double time : {-1.0, 1e300, std::nan(""), std::numeric_limits<double>::infinity()}) {
        Frame out(in.size());
        filter_.update(instance, time, in.data(), out.data());
        EXPECT_EQ(out, expected) << time;
    }
    filter_.destruct(instance);
}

}  // namespace
