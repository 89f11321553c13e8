// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant params` and `umbrant info` on the real module, on a machine whose EGL has no driver: what they print does
// not depend on one, and a render that asks for OpenGL says what is missing.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class CliWithoutOpenGL : public testing::Test {
 protected:
    CliWithoutOpenGL() { std::filesystem::create_directory(folder_ / "no_drivers"); }

    /// EGL looks for its drivers in a folder that has none. It is asked for: without a graphics device nobody would
    /// look.
    Outcome Run(const std::vector<std::string>& arguments) {
        return RunUmbrant(folder_, arguments,
                          {{"__EGL_VENDOR_LIBRARY_DIRS=" + (folder_ / "no_drivers").string(), "UMBRANT_RENDERER=gl",
                            std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE},
                           ""});
    }

    const Folder folder_;
};

TEST_F(CliWithoutOpenGL, InfoTellsTheIdentity) {
    const Outcome outcome = Run({"info"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    for (const char* text :
         {"Effect           Umbrant 2 1.3.3\n", "Match name       KAUM2\n", "Category         Halvane\n",
          "Interface        eFKT 13.28, entry EffectMain\n", "Flags            0x04008000 0x08201409\n",
          "Vendor           NULL\n", "Renderer         NULL\n", "OpenGL Version   NULL\n", "Shader Version   NULL\n",
          "Host             umbrant " PROJECT_VERSION ", interface 13.28\n",
          "\nUmbrant 2 v1.3.3\nSimulates a variety of shadow styles.\n"}) {
        EXPECT_THAT(outcome.out, HasSubstr(text));
    }
}

TEST_F(CliWithoutOpenGL, InfoAsJsonIsJsonAlone) {
    const Outcome outcome = Run({"info", "--json"});
    ASSERT_EQ(outcome.code, 0);
    const json info = ParseJsonOrDiscard(outcome.out);
    ASSERT_FALSE(info.is_discarded()) << outcome.out;
    EXPECT_EQ(info["matchName"], "KAUM2");
    EXPECT_EQ(info["about"], "Umbrant 2 v1.3.3\nSimulates a variety of shadow styles.\n\n");
    EXPECT_EQ(info["gpu"]["renderer"], "NULL");
    EXPECT_EQ(info["host"]["version"], PROJECT_VERSION);
}

TEST_F(CliWithoutOpenGL, InfoSaysWhatAnotherEffectDoesNotSay) {
    const Outcome outcome = Run({"info", "--module", TestModule("painter")});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (const char* line :
         {"\nVendor           not declared by the effect\n", "\nRenderer         not declared by the effect\n",
          "\nOpenGL Version   not declared by the effect\n"}) {
        EXPECT_THAT(outcome.out, HasSubstr(line));
    }
}

TEST_F(CliWithoutOpenGL, ParamsListEveryRow) {
    const Outcome outcome = Run({"params"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    for (const char* expression :
         {"#  +PATH +TYPE +VALUES +DEFAULT +FLAGS", "17 +style/distance +slider +0 to 2000 +250",
          "14 +style/shadow-type +popup +normal +cannot-time-vary", " +1 normal, 2 inner, 3 radial",
          "15 +style/angle +angle +degrees +135", "16 +style/origin +point +x,y in pixels +0%,0%",
          "19 +style/color +colour +#rrggbb +#000000", "23 +opacity/opacity-start +slider +0 to 100 % +20",
          "33 +easing/advanced/distance +slider +0 to 100 % +80", "39 +texture/layer +layer +--texture",
          "5 +about-support/gpu-spec +button +\\[Get Support\\] +supervised",
          "7 +about-support/renderer +popup +NULL +cannot-time-vary, disabled",
          "51 +compositing/buffer-expansion +slider +0 to 1000 +0"}) {
        EXPECT_THAT("\n" + outcome.out, testing::ContainsRegex("\n" + std::string(expression) + "\n"));
    }
    EXPECT_THAT(outcome.out, testing::Not(HasSubstr("debug")));
    const Outcome all = Run({"params", "--all"});
    ASSERT_EQ(all.code, 0) << all.err;
    EXPECT_THAT("\n" + all.out, testing::ContainsRegex("\n59 +debug/counter +slider +0 to 99999 +0 +disabled\n"));
}

TEST_F(CliWithoutOpenGL, ParamsAsJson) {
    const Outcome outcome = Run({"params", "--json"});
    ASSERT_EQ(outcome.code, 0);
    const json rows = ParseJsonOrDiscard(outcome.out);
    ASSERT_TRUE(rows.is_array());
    ASSERT_EQ(rows.size(), 61u);
    for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i]["index"], i);
    const json& distance = rows[17];
    EXPECT_EQ(distance["path"], "style/distance");
    EXPECT_EQ(distance["name"], "Distance");
    EXPECT_EQ(distance["type"], "slider");
    EXPECT_EQ(distance["id"], 4);
    EXPECT_EQ(distance["min"], 0);
    EXPECT_EQ(distance["max"], 2000);
    EXPECT_EQ(distance["sliderMax"], 200);
    EXPECT_EQ(distance["default"], 250);
    EXPECT_EQ(distance["precision"], 2);
    EXPECT_FALSE(distance.contains("unit"));
    EXPECT_EQ(rows[23]["unit"], "percent");
    const json& blend = rows[20];
    EXPECT_EQ(blend["items"].size(), 15u);
    EXPECT_EQ(blend["items"][1], "(-");
    EXPECT_EQ(blend["items"][14], "Darker Color");
    EXPECT_EQ(blend["defaultIndex"], 1);
    EXPECT_EQ(rows[40]["default"], "silhouette-luma");
    EXPECT_EQ(rows[3]["label"], "Product Page");
    EXPECT_EQ(rows[8]["items"], json::array({"NULL"}));
    EXPECT_EQ(rows[6]["flags"], json::array({"cannot-time-vary", "disabled"}));
    EXPECT_EQ(rows[60]["type"], "group end");
}

TEST_F(CliWithoutOpenGL, ParamsSayWhatEachRowDoes) {
    const Outcome declared = Run({"params", "--json"});
    const Outcome text = Run({"params", "--help-text", "--all"});
    ASSERT_EQ(text.code, 0) << text.err;
    std::istringstream lines("\n" + text.out);
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80u) << line;
    for (const auto& row : ParseJson(declared.out)) {
        const std::string path = row["path"];
        SCOPED_TRACE(path);
        EXPECT_EQ(row.contains("description"), !path.empty());
        if (path.empty()) continue;
        const std::string said = row["description"];
        const auto sentences = std::count(said.begin(), said.end(), '.');
        EXPECT_TRUE(said.ends_with('.') && sentences >= 1 && sentences <= 3) << said;
        EXPECT_THAT("\n" + text.out, HasSubstr("\n" + path + "\n    " + said.substr(0, said.find(' '))));
    }
    EXPECT_THAT(text.out, HasSubstr("\nstyle/softness\n"
                                    "    The blur at the end of the shadow, in pixels of the full-size layer. The\n"
                                    "    shadow is sharp where it begins and becomes softer along its length; 0 keeps\n"
                                    "    it sharp to the end.\n\n"));
    const Outcome shorter = Run({"params", "--help-text"});
    EXPECT_THAT(shorter.out, testing::Not(HasSubstr("debug/")));
    EXPECT_EQ(Run({"params", "--help-text", "--json"}).code, 2);
}

TEST_F(CliWithoutOpenGL, RenderSaysWhatIsMissing) {
    WriteLayer(folder_ / "in.png", 5, 3, {255, 200, 100, 50});
    const auto entries = folder_.Entries();
    for (const char* type : {"normal", "inner", "radial"}) {
        SCOPED_TRACE(type);
        const Outcome outcome = Run({"render", "in.png", "-o", "out.png", "--renderer", "gl", "--set",
                                     std::string("style/shadow-type=") + type});
        EXPECT_EQ(outcome.code, 1);
        EXPECT_THAT(outcome.err, HasSubstr("no OpenGL context could be made, so the effect cannot draw: "));
        EXPECT_THAT(outcome.err, HasSubstr("error 512, PF_Err_INTERNAL_STRUCT_DAMAGED"));
        EXPECT_EQ(outcome.out, "") << "the module's own diagnostics go elsewhere";
        EXPECT_EQ(folder_.Entries(), entries);
    }
}

TEST_F(CliWithoutOpenGL, WrongValuesOfEveryShadowTypeAreTold) {
    WriteLayer(folder_ / "in.png", 5, 3, {255, 200, 100, 50});
    const auto entries = folder_.Entries();
    const struct {
        const char* name;
        const char* type;
        const char* setting;
        const char* sentence;
    } rows[] = {
        {"a type that is none", "normal", "style/shadow-type=outer",
         "'style/shadow-type' has no item 'outer'; the items are: normal, inner, radial"},
        {"a number that is no type", "normal", "style/shadow-type=4",
         "'style/shadow-type' takes an item number from 1 to 3, not 4"},
        {"a misspelt blend mode", "inner", "style/blend-mode=multply",
         "'style/blend-mode' has no item 'multply'; closest: 'multiply'"},
        {"a separator as blend mode", "inner", "style/blend-mode=2",
         "'style/blend-mode' cannot be set to 2, which is a separator line"},
        {"too soft", "inner", "style/softness=501", "'style/softness' takes 0 to 500, not 501"},
        {"a softness that is no number", "inner", "style/softness=nan", "'style/softness'"},
        {"too far", "radial", "style/distance=2001", "'style/distance' takes 0 to 2000, not 2001"},
        {"a negative distance", "radial", "style/distance=-1", "'style/distance' takes 0 to 2000, not -1"},
        {"half a point", "radial", "style/origin=1",
         "'style/origin' takes a point as x,y in pixels of the full-size layer, not '1'"},
        {"a point with a third number", "radial", "style/origin=1,2,3",
         "'style/origin' takes a point as x,y in pixels of the full-size layer, not '1,2,3'"},
        {"a point without numbers", "radial", "style/origin=a,b",
         "'style/origin' takes a point as x,y in pixels of the full-size layer, not 'a,b'"},
        {"an infinite point", "radial", "style/origin=inf,0",
         "'style/origin' takes a point as x,y in pixels of the full-size layer, not 'inf,0'"},
        {"a point too far", "radial", "style/origin=40000,0", "'style/origin' takes -32767 to 32767 pixels, not 40000"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Run({"render", "in.png", "-o", "out.png", "--set",
                                     std::string("style/shadow-type=") + row.type, "--set", row.setting});
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr(std::string("umbrant: ") + row.sentence));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder_.Entries(), entries) << "nothing is left behind";
    }
}

TEST_F(CliWithoutOpenGL, TheModuleIsFoundBesideTheProgram) {
    const Outcome outcome = RunUmbrant(folder_, {"info", "--json"},
                                       {{"__EGL_VENDOR_LIBRARY_DIRS=" + (folder_ / "no_drivers").string()}, ""});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(ParseJson(outcome.out)["name"], "Umbrant 2");
}

}  // namespace

}  // namespace umbrant::host
