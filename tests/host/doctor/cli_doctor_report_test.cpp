// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant doctor` without a subject: a line for every part of the program, and what to do where one does not work.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "host/cli/doctor/part_report.h"
#include "tests/host/cli/program.h"
#include "tests/support/json.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

class DoctorReport : public testing::Test {
 protected:
    void SetUp() override {
        for (const char* name : {"home", "bin"}) fs::create_directories(folder_ / name);
        Tool("ffprobe", "ffprobe version 5.1.9", "");
        Tool("ffmpeg", "ffmpeg version 5.1.9-0+deb12u1 Copyright", AllEncoders());
    }

    static std::string AllEncoders() {
        return " V....D prores_ks   ProRes\n V....D ffv1  FFV1\n V....D libvpx-vp9 VP9\n VFS..D png PNG\n";
    }
    /// A program for clips that answers what it is asked.
    void Tool(const std::string& name, const std::string& version, const std::string& encoders) const {
        Script(name, "for option; do\ncase \"$option\" in\n-version) echo '" + version +
                         "';;\n-encoders) printf '%s' 'Encoders:\n V..... = Video\n ------\n" + encoders +
                         "';;\nesac\ndone");
    }
    void Script(const std::string& name, const std::string& text) const {
        const fs::path file = folder_ / "bin" / name;
        std::ofstream(file) << "#!/bin/sh\n" << text << "\n";
        fs::permissions(file, fs::perms::owner_all);
    }

    Outcome Run(std::vector<std::string> more = {}, std::vector<std::string> environment = {}) const {
        more.insert(more.begin(), "doctor");
        const std::vector<std::string> base = {"PATH=" + (folder_ / "bin").string() + ":/bin:/usr/bin",
                                               "HOME=" + (folder_ / "home").string(),
                                               "OFX_PLUGIN_PATH=",
                                               "XDG_CONFIG_HOME=",
                                               "UMBRANT_RENDERER=cpu",
                                               std::string("UMBRANT_MODULE=") + UMBRANT_MODULE_FILE};
        environment.insert(environment.begin(), base.begin(), base.end());
        return RunUmbrant(folder_, more, {environment, ""});
    }
    json Report(const std::vector<std::string>& environment = {}) const {
        return ParseJson(Run({"--json"}, environment).out);
    }
    /// The findings of a subject.
    static std::vector<json> Of(const json& report, const std::string& subject) {
        std::vector<json> found;
        for (const json& each : report["findings"]) {
            if (each["subject"] == subject) found.push_back(each);
        }
        return found;
    }
    /// The only finding of a subject that is not in order.
    static json Wrong(const json& report, const std::string& subject) {
        json found;
        for (const json& each : Of(report, subject)) {
            if (each["condition"] == "ok") continue;
            EXPECT_TRUE(found.is_null()) << each;
            found = each;
        }
        EXPECT_FALSE(found.is_null()) << report;
        return found;
    }

    const Folder folder_;
};

TEST_F(DoctorReport, EveryPartHasALine) {
    const Outcome outcome = Run();
    EXPECT_EQ(outcome.code, 0) << outcome.out;
    EXPECT_EQ(outcome.err, "");
    const json report = Report();
    std::set<std::string> subjects;
    for (const json& each : report["findings"]) {
        subjects.insert(each["subject"]);
        EXPECT_NE(each["condition"], "problem") << each;
        EXPECT_EQ(each.contains("advice"), each["condition"] == "note") << each;
    }
    EXPECT_THAT(subjects,
                IsSupersetOf({"program", "system", "processor", "memory", "disk", "module", "renderer", "images",
                              "panel", "preview", "colour", "fonts", "presets", "clips", "codecs", "openfx"}));
    EXPECT_THAT(outcome.out, testing::ContainsRegex("\nok       module     'Umbrant 2', /[^\n]*umbrant2.so\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nok       renderer   drawn by the CPU renderer: "));
    EXPECT_THAT(outcome.out, HasSubstr("\nok       clips      ffmpeg 5.1.9-0+deb12u1\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nok       codecs     prores4444, ffv1, vp9, png"));
    EXPECT_THAT(outcome.out, HasSubstr("\nset      UMBRANT_RENDERER=cpu\n"));
}

TEST_F(DoctorReport, HidesTheHomeFolder) {
    const std::string home = (folder_ / "home").string();
    fs::create_directories(folder_ / "home/temporary");
    const Outcome outcome = Run({}, {"TMPDIR=" + home + "/temporary"});
    EXPECT_THAT(outcome.out, Not(HasSubstr(home)));
    EXPECT_THAT(outcome.out, HasSubstr("free in the folder of temporary files '~/temporary'\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nset      TMPDIR=~/temporary\n"));
    EXPECT_EQ(Report({"TMPDIR=" + home + "/temporary"}).dump().find(home), std::string::npos);
}

TEST_F(DoctorReport, AModuleThatIsMissing) {
    const Outcome outcome = Run({"--module", "none.so"});
    EXPECT_EQ(outcome.code, 4);
    EXPECT_THAT(outcome.out, testing::ContainsRegex("\nproblem  module     [^\n]*none.so[^\n]*\n +-> [^\n]+\n"));
    // The others are examined all the same.
    EXPECT_THAT(outcome.out, HasSubstr("\nok       clips      ffmpeg"));
}

TEST_F(DoctorReport, AModuleThatEndsItsProcess) {
    const Outcome outcome = Run({"--module", TestModule("leaver")}, {"UMBRANT_TEST_LEAVES=set-up:crash"});
    EXPECT_NE(outcome.code, 0);
    EXPECT_THAT(outcome.out, testing::ContainsRegex("\nproblem  module  [^\n]*leaver[^\n]*\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nok       clips      ffmpeg"));
}

TEST_F(DoctorReport, AWrongRendererIsAProblem) {
    const Outcome outcome = Run({}, {"UMBRANT_RENDERER=vulkan"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.out, HasSubstr("\nproblem  renderer   "));
    EXPECT_THAT(outcome.out, HasSubstr("vulkan"));
}

/// PATH, for as long as it lives.
class PathVariable {
 public:
    explicit PathVariable(const std::string& path) : before_(std::getenv("PATH")) { setenv("PATH", path.c_str(), 1); }
    ~PathVariable() { setenv("PATH", before_.c_str(), 1); }
    PathVariable(const PathVariable&) = delete;
    PathVariable& operator=(const PathVariable&) = delete;

 private:
    std::string before_;
};

/// The finding about clips that is not in order.
PartReport WrongClips() {
    for (const PartReport& each : FindClipTools()) {
        if (each.condition != PartCondition::kGood) return each;
    }
    ADD_FAILURE() << "everything is in order";
    return {};
}

TEST_F(DoctorReport, ToolsForClips) {
    const PathVariable path((folder_ / "bin").string());
    Tool("ffmpeg", "ffmpeg version 4.4.2 Copyright", AllEncoders());
    EXPECT_EQ(WrongClips(), (PartReport{"clips", PartCondition::kNote, "ffmpeg 4.4.2",
                                        "install ffmpeg 5.1 or newer; clips have not been tested with this version"}));
    Tool("ffmpeg", "ffmpeg version N-109-g12 Copyright", " V....D ffv1  FFV1\n A....D png a sound\n");
    const PartReport codecs = WrongClips();
    EXPECT_EQ(codecs.subject, "codecs");
    EXPECT_EQ(codecs.condition, PartCondition::kNote);
    EXPECT_THAT(codecs.text, testing::StartsWith("this ffmpeg was built without prores4444, vp9, png"));
    EXPECT_EQ(codecs.advice, "install an ffmpeg with these encoders, or choose another --codec");
    Tool("ffmpeg", "a program of that name", "");
    EXPECT_EQ(WrongClips().text, "the 'ffmpeg' in PATH does not report a version");
    Script("ffmpeg", "echo no licence >&2; exit 7");
    EXPECT_EQ(WrongClips().text, "ffmpeg ended with exit code 7: no licence");
    fs::remove(folder_ / "bin/ffmpeg");
    EXPECT_EQ(WrongClips(), (PartReport{"clips", PartCondition::kProblem, "clips need 'ffmpeg', which is not in PATH",
                                        "install ffmpeg (Debian: apt install ffmpeg)", ErrorKind::kFile}));
    EXPECT_EQ(Run({}, {"PATH=" + (folder_ / "bin").string()}).code, 3);
}

TEST_F(DoctorReport, FoldersThatDoNotWork) {
    const json disk = Wrong(Report({"TMPDIR=" + (folder_ / "none").string()}), "disk");
    EXPECT_EQ(disk["condition"], "problem");
    EXPECT_THAT(disk["text"].get<std::string>(),
                testing::EndsWith("/none' cannot be examined: No such file or directory"));
    EXPECT_EQ(disk["advice"], "change to a folder that exists, or set TMPDIR to one");

    fs::create_directories(folder_ / "config/umbrant");
    fs::create_symlink("presets", folder_ / "config/umbrant/presets");
    const json presets = Wrong(Report({"XDG_CONFIG_HOME=" + (folder_ / "config").string()}), "presets");
    EXPECT_EQ(presets["condition"], "problem");
    EXPECT_THAT(presets["text"].get<std::string>(), HasSubstr("config/umbrant/presets"));
}

TEST_F(DoctorReport, Bundles) {
    fs::create_directories(folder_ / "plugins/Broken.ofx.bundle/Contents");
    const json wrong = Wrong(Report({"OFX_PLUGIN_PATH=" + (folder_ / "plugins").string()}), "openfx");
    EXPECT_EQ(wrong["condition"], "problem");
    EXPECT_THAT(wrong["text"].get<std::string>(), HasSubstr("Broken.ofx.bundle"));
    EXPECT_THAT(Report({"OFX_PLUGIN_PATH=" + (folder_ / "plugins").string()})["environment"].dump(),
                HasSubstr("OFX_PLUGIN_PATH="));
}

TEST_F(DoctorReport, TakesNoOptionsOfTheOther) {
    EXPECT_EQ(Run({"openfx", "--json"}).code, 2);
    EXPECT_EQ(Run({"openfx", "--module", "m.so"}).code, 2);
    EXPECT_EQ(Run({"weather"}).code, 2);
}

}  // namespace

}  // namespace umbrant::host
