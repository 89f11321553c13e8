// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Values that are given to frames: a snapshot of an effect's, independent of it.

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <optional>

#include "tests/host/library/library_fixture.h"

namespace umbrant::host {

namespace {

using testing::StartsWith;
using umbrant::Effect;
using umbrant::Image;
using umbrant::Rectangle;
using umbrant::Values;

const Pixels<std::uint8_t> kLayer = Disc8(31, 27);

TEST(LibraryValues, AFrameHasTheValuesThatItIsGiven) {
    Effect effect = RealEffect();
    Effect other = RealEffect();
    effect.Set("style/softness", 3);
    Values values = effect.CurrentValues();
    values.Set("style/distance", 40);
    values.Set("style/angle", "200");
    values.Set("style/color", "#40c0ff");
    for (const auto& [path, value] : {std::pair{"style/softness", "3"},
                                      {"style/distance", "40"},
                                      {"style/angle", "200"},
                                      {"style/color", "#40c0ff"}}) {
        other.Set(path, value);
    }
    const Image expected = other.Render(kLayer.View());
    EXPECT_EQ(DifferentBytes(effect.Render(kLayer.View(), values), expected), 0u);
    EXPECT_NE(DifferentBytes(effect.Render(kLayer.View()), expected), 0u) << "the effect's own did not change";
    EXPECT_EQ(effect.Place(kLayer.View(), values), expected.Place());
    EXPECT_EQ(effect.Place(31, 27, values), expected.Place());
    std::vector<std::uint8_t> target(4 * expected.PixelCount());
    EXPECT_EQ(effect.RenderInto(kLayer.View(), {target.data(), expected.Width(), expected.Height()}, values),
              expected.Place());
    EXPECT_EQ(std::memcmp(target.data(), expected.Bytes(), target.size()), 0);
}

TEST(LibraryValues, ASnapshotAndItsEffectAreIndependent) {
    Effect effect = Painter();
    effect.Set("paint/border", 1);
    const Values before = effect.CurrentValues();
    effect.Set("paint/border", 4);
    Values after = effect.CurrentValues();
    Values copy = after;
    copy.Set("paint/border", 6);
    EXPECT_EQ(before.Get("paint/border"), "1");
    EXPECT_EQ(after.Get("paint/border"), "4");
    EXPECT_EQ(copy.Get("paint/border"), "6");
    EXPECT_EQ(effect.Get("paint/border"), "4");
    EXPECT_EQ(effect.Render(kLayer.View(), before).Width(), 31 + 2);
    EXPECT_EQ(effect.Render(kLayer.View(), copy).Width(), 31 + 12);
    EXPECT_EQ(effect.Render(kLayer.View()).Width(), 31 + 8);
    after = before;
    EXPECT_EQ(after.Get("paint/border"), "1");
    const Values moved = std::move(copy);
    EXPECT_EQ(moved.Get("paint/border"), "6");
}

TEST(LibraryValues, RowsAreNamedByPathOrIndex) {
    Effect effect = Painter();
    Values values = effect.CurrentValues();
    const int border = effect.Find("paint/border").index, color = effect.Find("paint/color").index;
    values.Set(border, 2.5);
    EXPECT_EQ(values.Get("paint/border"), "2.5");
    values.Set(border, "3");
    EXPECT_EQ(values.Get(border), "3");
    values.Set(color, "#112233");
    EXPECT_EQ(values.Get("#2"), "#112233");
    values.Set(color, umbrant::Color{1, 0, 0.5f});
    EXPECT_EQ(values.Get(color), "#ff0080");
    values.Set("paint/color", umbrant::Color{0, 1, 0});
    EXPECT_EQ(values.Get(color), "#00ff00");
    values.Set("paint/centre", "10%,20%");
    EXPECT_EQ(values.Get("paint/centre"), "10%,20%");
    values.Set("flaw", "leak");
    EXPECT_EQ(values.Get("flaw"), "leak");
    values.Set("paint/angle", 405);
    EXPECT_EQ(values.Get("paint/angle"), "405");
}

TEST(LibraryValues, KeyframesComeAlongUntilTheRowIsSet) {
    Effect effect = Painter();
    effect.ApplyPreset(
        R"({"version": 2, "keyframes": {"paint/border": [{"frame": 0, "value": 0}, {"frame": 24, "value": 4}]}})");
    umbrant::FrameOptions later;
    later.seconds = 1;
    Values values = effect.CurrentValues();
    effect.Reset();
    EXPECT_EQ(effect.Render(kLayer.View(), values).Width(), 31);
    EXPECT_EQ(effect.Render(kLayer.View(), values, later).Width(), 31 + 8);
    EXPECT_EQ(effect.Place(31, 27, values, later).Width(), 31 + 8);
    values.Set("paint/border", 1);
    EXPECT_EQ(effect.Render(kLayer.View(), values, later).Width(), 31 + 2);
}

TEST(LibraryValues, BadValuesHaveTheSentencesOfSet) {
    struct {
        const char* what;
        std::function<void(Values&)> onValues;
        std::function<void(Effect&)> onEffect;
    } const cases[] = {
        {"an unknown path", [](Values& v) { v.Set("paint/colour", "#000000"); },
         [](Effect& e) { e.Set("paint/colour", "#000000"); }},
        {"an unknown row", [](Values& v) { v.Set(77, 1); }, [](Effect& e) { e.Set("#77", 1); }},
        {"a negative row", [](Values& v) { v.Set(-1, "1"); }, [](Effect& e) { e.Set("#-1", "1"); }},
        {"a bad value", [](Values& v) { v.Set("paint/border", "wide"); },
         [](Effect& e) { e.Set("paint/border", "wide"); }},
        {"out of range", [](Values& v) { v.Set("paint/border", -1); }, [](Effect& e) { e.Set("paint/border", -1); }},
        {"a layer", [](Values& v) { v.Set("paint/picture", "1"); }, [](Effect& e) { e.Set("paint/picture", "1"); }},
        {"a colour for a number", [](Values& v) { v.Set("paint/border", umbrant::Color{}); },
         [](Effect& e) { e.Set("paint/border", umbrant::Color{}); }},
        {"a colour out of range",
         [](Values& v) {
             v.Set("paint/color", umbrant::Color{1e6f, 0, 0});
         },
         [](Effect& e) {
             e.Set("paint/color", umbrant::Color{1e6f, 0, 0});
         }},
        {"a row to get", [](Values& v) { (void)v.Get("flow"); }, [](Effect& e) { (void)e.Get("flow"); }},
    };
    Effect effect = Painter();
    Values values = effect.CurrentValues();
    for (const auto& row : cases) {
        const std::string thrown = Thrown([&] { row.onValues(values); });
        EXPECT_THAT(thrown, StartsWith("2: ")) << row.what;
        EXPECT_EQ(thrown, Thrown([&] { row.onEffect(effect); })) << row.what;
    }
    EXPECT_EQ(values.Get("paint/border"), effect.Get("paint/border"));
    EXPECT_EQ(values.Get("paint/color"), effect.Get("paint/color"));
}

TEST(LibraryValues, AreOfAModuleAndNotOfAnEffect) {
    std::optional<Values> values;
    Image expected;
    {
        Effect gone = RealEffect();
        gone.Set("style/distance", 33);
        values = gone.CurrentValues();
        expected = gone.Render(kLayer.View());
    }
    const Effect effect = RealEffect();
    EXPECT_EQ(DifferentBytes(effect.Render(kLayer.View(), *values), expected), 0u);
    const Effect painter = Painter();
    const char* const refused =
        "2: the values belong to an effect with other parameters; take them from CurrentValues() of this one";
    EXPECT_EQ(Thrown([&] { painter.Render(kLayer.View(), *values); }), refused);
    EXPECT_EQ(Thrown([&] { painter.Place(31, 27, *values); }), refused);
    EXPECT_EQ(Thrown([&] { effect.Place(kLayer.View(), painter.CurrentValues()); }), refused);
}

}  // namespace

}  // namespace umbrant::host
