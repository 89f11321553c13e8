// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The presets that a preview offers: their list, one of them by its name, and what a name cannot reach.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/preview/preview_client.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

class PreviewPresets : public testing::Test {
 protected:
    PreviewPresets() {
        std::filesystem::create_directories(folder_ / "config/umbrant/presets");
        WriteBytes(folder_ / "config/umbrant/presets/mine.json",
                   R"({"version": 2, "values": {"style/softness": 12}, "keyframes": {
                       "style/angle": [{"frame": 3, "value": 20}, {"frame": 9, "value": 200}]}})");
        WriteBytes(folder_ / "secret.json", R"({"version": 1, "values": {"style/softness": 99}})");
    }
    std::vector<std::string> Environment() const {
        return {"XDG_CONFIG_HOME=" + std::filesystem::absolute(folder_ / "config").string()};
    }

    const Folder folder_;
};

TEST_F(PreviewPresets, AreListedAndLoadedByName) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--renderer", "cpu"}, Environment());
    const Page page(preview);
    const json list = preview.Get("presets").Json()["presets"];
    EXPECT_THAT(list, Contains(json{{"name", "neon"}, {"isYours", false}}));
    EXPECT_THAT(list, Contains(json{{"name", "mine"}, {"isYours", true}}));
    const json mine = preview.Post("named?name=mine", "").Json();
    EXPECT_EQ(mine["values"], (json{{"style/softness", "12"}}));
    EXPECT_EQ(mine["keyframes"]["style/angle"].size(), 2U);
    EXPECT_EQ(mine["frames"], "3-9");
    EXPECT_EQ(preview.Post("named?name=neon", "").Json()["values"]["style/color"], "#ff2fa0");
}

TEST_F(PreviewPresets, NamesReachTheListOnly) {
    const RunningPreview preview(folder_, {LAYERS "/card.png", "--renderer", "cpu"}, Environment());
    const Page page(preview);
    for (const std::string name : {"", "secret", "secret.json", "mine.json", "..%2F..%2F..%2Fsecret", "none"}) {
        const WireReply reply = preview.Post("named?name=" + name, "");
        EXPECT_EQ(reply.status, 404) << name;
        EXPECT_THAT(reply.Error(), HasSubstr("there is no preset '")) << name;
    }
    EXPECT_EQ(preview.Post("presets", "").status, 404);
    // One that was damaged, and one that was removed, since the page has its list.
    WriteBytes(folder_ / "config/umbrant/presets/mine.json", R"({"version": 1, "values": {"style/nothing": 1}})");
    const WireReply wrong = preview.Post("named?name=mine", "");
    EXPECT_EQ(wrong.status, 422);
    EXPECT_THAT(wrong.Error(), HasSubstr("mine.json"));
    std::filesystem::remove(folder_ / "config/umbrant/presets/mine.json");
    EXPECT_EQ(preview.Post("named?name=mine", "").status, 404);
}

}  // namespace

}  // namespace umbrant::host
