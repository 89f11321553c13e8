// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What a render reports and keeps besides its pixels: the report, the refused suites, the texture's place, the file's
// metadata and compression, and files that are too large to be drawn.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"
#include "tests/host/image/picture_files.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;

class CliReport : public testing::Test {
 protected:
    CliReport() { WriteLayer(folder_ / "in.png", 5, 3, {255, 200, 100, 50}); }

    Outcome Paint(std::vector<std::string> arguments, const std::string& input = "in.png",
                  const std::string& output = "out.png") {
        arguments.insert(arguments.begin(), {"render", input, "-o", output, "--module", TestModule("painter")});
        return RunInProcess(folder_, arguments);
    }

    const Folder folder_;
};

TEST_F(CliReport, IsJsonAlone) {
    const Outcome outcome = Paint({"--json", "--set", "paint/border=2", "--canvas", "layer"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const json report = ParseJsonOrDiscard(outcome.out);
    ASSERT_TRUE(report.is_object()) << outcome.out;
    EXPECT_EQ(report["input"], "in.png");
    EXPECT_EQ(report["output"], "out.png");
    EXPECT_EQ(report["depth"], 8);
    EXPECT_EQ(report["downsample"], 1);
    EXPECT_EQ(report["canvas"], "layer");
    const json layer = {{"left", 0}, {"top", 0}, {"right", 5}, {"bottom", 3}, {"width", 5}, {"height", 3}};
    EXPECT_EQ(report["rectangles"]["layer"], layer);
    EXPECT_EQ(report["rectangles"]["picture"], layer);
    EXPECT_EQ(report["rectangles"]["largest"]["left"], -2);
    EXPECT_EQ(report["rectangles"]["largest"]["width"], 9);
    EXPECT_TRUE(report["rectangles"].contains("result"));
    double sum = 0;
    for (const char* stage : {"load", "pre-render", "upload", "passes", "read-back", "composite", "save"}) {
        ASSERT_TRUE(report["milliseconds"][stage].is_number()) << stage;
        EXPECT_GE(report["milliseconds"][stage].get<double>(), 0) << stage;
        sum += report["milliseconds"][stage].get<double>();
    }
    EXPECT_GT(report["milliseconds"]["load"].get<double>(), 0);
    EXPECT_GT(report["milliseconds"]["save"].get<double>(), 0);
    EXPECT_LE(sum, report["milliseconds"]["total"].get<double>() + 0.001);
    EXPECT_EQ(report["host"]["version"], PROJECT_VERSION);
    EXPECT_TRUE(report["gpu"].contains("renderer"));
    EXPECT_EQ(report["renderer"], (json{{"used", "gl"}, {"why", "the effect names no renderer"}}));
    EXPECT_TRUE(report["suites"]["acquired"].is_array());
    EXPECT_EQ(report["suites"]["refused"], json::array());
    EXPECT_EQ(report["commands"][0]["name"], "PF_Cmd_GLOBAL_SETUP");
    EXPECT_EQ(report["misbehaviour"], json::array());
    EXPECT_TRUE(std::filesystem::exists(folder_ / "out.png"));
}

TEST_F(CliReport, CommandsAreInTheOrderOfTime) {
    const Outcome outcome = Paint({"--json"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    const json report = ParseJson(outcome.out);
    std::vector<std::string> names;
    for (const json& command : report["commands"]) names.push_back(command["name"]);
    ASSERT_FALSE(names.empty());
    const auto at = [&](const char* name) {
        const auto found = std::find(names.begin(), names.end(), name);
        EXPECT_NE(found, names.end()) << name;
        return found - names.begin();
    };
    EXPECT_EQ(at("PF_Cmd_GLOBAL_SETUP"), 0);
    EXPECT_LT(at("PF_Cmd_SEQUENCE_SETUP"), at("PF_Cmd_SMART_PRE_RENDER"));
    EXPECT_LT(at("PF_Cmd_SMART_PRE_RENDER"), at("PF_Cmd_SMART_RENDER"));
    EXPECT_LT(at("PF_Cmd_SMART_RENDER"), at("PF_Cmd_SEQUENCE_SETDOWN"));
    EXPECT_EQ(names.back(), "PF_Cmd_GLOBAL_SETDOWN");
}

TEST_F(CliReport, RefusedSuitesAreNamedAlsoWhenTheRenderFails) {
    const Outcome outcome = Paint({"--verbose", "--set", "flaw=unknown-suite"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_THAT(outcome.err, HasSubstr("refused suite: PF Suite Of Dreams 3\n"));
}

TEST_F(CliReport, AFailedRenderReportsNothing) {
    const Outcome outcome = Paint({"--json", "--set", "flaw=throw"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CliReport, TheTextureLiesWhereItIsPut) {
    WriteLayer(folder_ / "texture.png", 4, 4, {255, 9, 8, 7});
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        int x, y;  // a pixel in the texture's first column
    } cases[] = {
        {"right and down", {"--texture-at", "3,1"}, 6, 6},
        {"to the left and up", {"--texture-at", "-2,-3"}, 1, 0},
        {"in pixels of the whole layer", {"--texture-at", "6,4", "--downsample", "2"}, 5, 4},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = {"--set", "paint/border=3", "--texture", "texture.png"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        ASSERT_EQ(Paint(arguments).code, 0);
        Picture picture = Read(folder_ / "out.png");
        EXPECT_EQ(Pixel8(picture.pixels, row.x, row.y).red, 9);
        EXPECT_EQ(Pixel8(picture.pixels, row.x - 1, row.y).red, 10) << "nothing before it";
    }
}

TEST_F(CliReport, ATextureOfAnotherDepthIsBroughtToTheLayers) {
    WriteFile(folder_ / "deep.png", OIIO::ImageSpec(9, 9, 4, OIIO::TypeDesc::UINT16), {0.2f, 0.4f, 0.6f, 1});
    WriteFile(folder_ / "real.exr", OIIO::ImageSpec(9, 9, 4, OIIO::TypeDesc::FLOAT), {0.2f, 0.4f, 0.6f, 1}, false);
    for (const char* texture : {"deep.png", "real.exr"}) {
        SCOPED_TRACE(texture);
        const Outcome outcome = Paint({"--set", "paint/border=2", "--texture", texture});
        ASSERT_EQ(outcome.code, 0) << outcome.err;
        Picture picture = Read(folder_ / "out.png");
        EXPECT_EQ(picture.bits, 8);
        EXPECT_EQ(Pixel8(picture.pixels, 8, 6).red, 51);
        EXPECT_EQ(Pixel8(picture.pixels, 8, 6).blue, 153);
    }
    WriteLayer(folder_ / "eight.png", 9, 9, {255, 51, 102, 153});
    ASSERT_EQ(Paint({"--set", "paint/border=2", "--texture", "eight.png"}, "real.exr", "out.exr").code, 0);
    EXPECT_EQ(Read(folder_ / "out.exr").bits, 32);
}

TEST_F(CliReport, WrongPlacesAndCompressions) {
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        const char* output;
        const char* sentence;
    } rows[] = {
        {"one number", {"--texture", "in.png", "--texture-at", "3"}, "o.png", "'3' is not a position X,Y"},
        {"words", {"--texture", "in.png", "--texture-at", "a,b"}, "o.png", "'a,b' is not a position X,Y"},
        {"three numbers", {"--texture", "in.png", "--texture-at", "1,2,3"}, "o.png", "'1,2,3' is not a position X,Y"},
        {"not a number", {"--texture", "in.png", "--texture-at", "nan,0"}, "o.png", "'nan,0' is not a position X,Y"},
        {"without a texture", {"--texture-at", "1,2"}, "o.png", "--texture"},
        {"no compression of EXR",
         {"--compression", "lzw"},
         "o.exr",
         "'lzw' is not a compression of .exr; use one of: zip"},
        {"no compression of TIFF", {"--compression", "piz"}, "o.tif", "'piz' is not a compression of .tif"},
        {"two in one", {"--compression", "zip zips"}, "o.exr", "'zip zips' is not a compression of .exr"},
        {"another one for PNG",
         {"--compression", "zip"},
         "o.png",
         "'zip' is not a compression of .png; use one of: default fast small"},
        {"a quality of 0", {"--compression", "jpeg:0"}, "o.jpg", "use 'jpeg:1' to 'jpeg:100'"},
        {"a quality that is none", {"--compression", "jpeg:nan"}, "o.jpg", "use 'jpeg:1' to 'jpeg:100'"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Paint(row.arguments, "in.png", row.output);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(folder_.Entries(), 1);
    }
}

TEST_F(CliReport, HalvesCompressionAndTagsSurvive) {
    OIIO::ImageSpec header(6, 4, 4, OIIO::TypeDesc::HALF);
    header.full_x = 10;
    header.full_y = 20;
    header.x = 9;
    header.y = 18;
    header.full_width = 4;
    header.full_height = 3;
    header.attribute("compression", "piz");
    header.attribute("owner", "Ada");
    const int timecode[2] = {0x01020304, 0x05060708};
    header.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    WriteFile(folder_ / "in.exr", header, {1, 0.5f, 0.25f, 1}, false);
    ASSERT_EQ(Paint({"--set", "paint/border=2"}, "in.exr", "out.exr").code, 0);
    RawFile raw = ReadRaw(folder_ / "out.exr");
    EXPECT_EQ(raw.layout.format, OIIO::TypeDesc::HALF);
    EXPECT_EQ(raw.layout.get_string_attribute("compression"), "piz");
    EXPECT_EQ(raw.layout.get_string_attribute("owner", raw.layout.get_string_attribute("Copyright")), "Ada");
    const auto* kept = raw.layout.find_attribute("smpte:TimeCode", OIIO::TypeTimeCode);
    ASSERT_TRUE(kept);
    EXPECT_EQ(static_cast<const int*>(kept->data())[0], timecode[0]);
    EXPECT_EQ(raw.layout.full_x, 10);
    EXPECT_EQ(raw.layout.full_y, 20);
    EXPECT_EQ(raw.layout.full_width, 4);
    EXPECT_EQ(raw.layout.x, 8) << "the frame's corner less the border";
    EXPECT_EQ(raw.layout.y, 18);
    EXPECT_EQ(raw.layout.width, 8);

    ASSERT_EQ(Paint({"--depth", "32", "--compression", "zips"}, "in.exr", "deep.exr").code, 0);
    raw = ReadRaw(folder_ / "deep.exr");
    EXPECT_EQ(raw.layout.format, OIIO::TypeDesc::FLOAT) << "when it is asked for";
    EXPECT_EQ(raw.layout.get_string_attribute("compression"), "zips");
}

TEST_F(CliReport, AnEnormousInputIsRefusedBeforeMemoryIsTaken) {
    // 60000 x 60000 pixels claimed by a file of a few bytes.
    std::string tiff("II*\0\x08\0\0\0", 8);
    const auto entry = [](int tag, int type, unsigned value) {
        std::string bytes;
        for (const unsigned part : {static_cast<unsigned>(tag), static_cast<unsigned>(type)}) {
            bytes += {static_cast<char>(part & 255), static_cast<char>(part >> 8)};
        }
        for (const unsigned part : {1u, value}) {
            for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(part >> shift & 255);
        }
        return bytes;
    };
    tiff += std::string("\x08\0", 2) + entry(256, 4, 60000) + entry(257, 4, 60000) + entry(258, 3, 8) +
            entry(259, 3, 1) + entry(262, 3, 1) + entry(273, 4, 8) + entry(278, 4, 60000) + entry(279, 4, 3600000000u) +
            std::string(4, '\0');
    WriteBytes(folder_ / "huge.tif", tiff);
    const Outcome outcome = Paint({}, "huge.tif");
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(
        outcome.err,
        HasSubstr("cannot read 'huge.tif': too large: 60000 x 60000 pixels; no side may be longer than 30000\n"));
    EXPECT_EQ(outcome.out, "");
    const Outcome asTexture = Paint({"--texture", "huge.tif"});
    EXPECT_EQ(asTexture.code, 3);
    EXPECT_EQ(folder_.Entries(), 2);
}

}  // namespace

}  // namespace umbrant::host
