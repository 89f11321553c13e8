// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant doctor openfx`: one sentence and one exit code for every way in which a bundle can be wrong.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/host/cli/program.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

#if defined(__x86_64__)
constexpr char kPatientFolder[] = "Linux-x86-64";
#else
constexpr char kPatientFolder[] = "Linux-aarch64";
#endif

class CliDoctor : public testing::Test {
 protected:
    /// Makes a bundle of one of the binaries of these tests, and returns its folder.
    fs::path Bundle(const std::string& binary = "Patient", const std::string& folder = "") const {
        const fs::path bundle = folder_ / (folder + binary + ".ofx.bundle");
        fs::create_directories(bundle / "Contents" / kPatientFolder);
        fs::copy_file(fs::path(TEST_BINARIES) / (binary + ".ofx"), Binary(bundle));
        return bundle;
    }
    static fs::path Binary(const fs::path& bundle) { return bundle / "Contents" / kPatientFolder / bundle.stem(); }

    Outcome Doctor(const fs::path& bundle, const std::string& wrong = "",
                   const std::vector<std::string>& more = {}) const {
        std::vector<std::string> arguments = {"doctor", "openfx", bundle.string()};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return RunUmbrant(folder_, arguments, {{"UMBRANT_TEST_PATIENT=" + wrong}, ""});
    }
    void Expect(const Outcome& outcome, int code, const std::string& sentence) const {
        EXPECT_EQ(outcome.code, code) << outcome.err;
        EXPECT_EQ(outcome.err, "umbrant: " + sentence + "\n");
        EXPECT_EQ(outcome.out, "");
    }

    const Folder folder_;
};

TEST_F(CliDoctor, ABundleThatIsInOrder) {
    const fs::path bundle = Bundle();
    const std::string sentence =
        "'" + bundle.string() +
        "' is in order: 'Patient' (com.example.patient 1.2) has 1 parameter and draws a frame of "
        "64 x 48 pixels with 8 bits a channel.\n";
    for (const fs::path& named : {bundle, fs::path(bundle.string() + "/"), fs::path("Patient.ofx.bundle")}) {
        const Outcome outcome = Doctor(named);
        EXPECT_EQ(outcome.code, 0);
        EXPECT_EQ(outcome.out, sentence);
        EXPECT_EQ(outcome.err, "");
    }
}

TEST_F(CliDoctor, WhatDrawsNoFrameIsDescribed) {
    const fs::path bundle = Bundle();
    EXPECT_THAT(Doctor(bundle, "identity:source").out,
                HasSubstr("has 1 parameter and passes its clip 'Source' on as it is."));
    EXPECT_THAT(Doctor(bundle, "context:generator").out,
                HasSubstr("was not asked for a frame, because it has no clip 'Source'."));
}

TEST_F(CliDoctor, WhatAPluginDoes) {
    const fs::path bundle = Bundle();
    const std::string start = "the plug-in 'com.example.patient' of '" + bundle.string() + "' ";
    const std::string size = "a frame of 64 x 48 pixels with 8 bits a channel";
    const struct {
        const char* wrong;
        std::string does;
    } rows[] = {
        {"setHost:throws", "throws an exception (\"no coffee\") out of setHost, which ends most hosts"},
        {"OfxActionDescribe:throws",
         "throws an exception (\"no coffee\") out of OfxActionDescribe, which ends most hosts; it has to answer a "
         "status"},
        {"OfxImageEffectActionRender:throws-number",
         "throws an exception out of OfxImageEffectActionRender, which ends most hosts; it has to answer a status"},
        {"OfxActionLoad:fails", "answers OfxActionLoad with Failed (1)"},
        {"OfxImageEffectActionDescribeInContext:fails",
         "answers OfxImageEffectActionDescribeInContext with Failed (1)"},
        {"OfxImageEffectActionGetRegionOfDefinition:fails",
         "answers OfxImageEffectActionGetRegionOfDefinition with Failed (1)"},
        {"context:none", "names no context when it is described"},
        {"pixels:message", "answers OfxImageEffectActionRender with Failed (1): the licence is 7"},
        {"pixels:none", "writes no pixel of " + size + " and reports success"},
        {"pixels:beyond", "writes beyond the memory of " + size},
        {"pixels:kept", "does not release its images after a frame, so that a host runs out of memory"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.wrong);
        Expect(Doctor(bundle, row.wrong), 1, start + row.does);
    }
}

TEST_F(CliDoctor, EveryEndOfItsProcess) {
    const fs::path bundle = Bundle();
    const struct {
        const char* wrong;
        int code;
        const char* end;
    } rows[] = {
        {"constructor:crashes", 4, "crashed with signal 11 (Segmentation fault) while it was loaded"},
        {"constructor:exits", 4, "ended the process with exit code 3 while it was loaded"},
        {"constructor:throws", 4, "crashed with signal 6 (Aborted) while it was loaded"},
        {"OfxActionDescribe:crashes", 1,
         "crashed with signal 11 (Segmentation fault) during OfxActionDescribe of 'com.example.patient'"},
        {"OfxImageEffectActionRender:exits", 1,
         "ended the process with exit code 3 during OfxImageEffectActionRender of 'com.example.patient'"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.wrong);
        const Outcome outcome = Doctor(bundle, row.wrong);
        EXPECT_EQ(outcome.code, row.code);
        EXPECT_THAT(outcome.err,
                    HasSubstr("umbrant: '" + bundle.string() + "' " + row.end + "; a host would end with it\n"));
    }
}

TEST_F(CliDoctor, OneThatHangs) {
    const fs::path bundle = Bundle();
    // The first step, so that no other has to be done within the second.
    Expect(Doctor(bundle, "constructor:hangs", {"--timeout", "1"}), 4,
           "'" + bundle.string() + "' hangs: no answer in 1 seconds while it was loaded; a host would hang with it");
}

TEST_F(CliDoctor, WhatCannotBeLoaded) {
    const auto expect = [this](const char* binary, const std::string& reason) {
        SCOPED_TRACE(binary);
        const fs::path bundle = Bundle(binary);
        Expect(Doctor(bundle), 4, "'" + bundle.string() + "' " + reason);
    };
    expect("NoEntries",
           "is not an OpenFX plug-in: 'NoEntries.ofx' does not export the function 'OfxGetNumberOfPlugins'; build it "
           "with both "
           "entry points visible");
    expect("NoSymbol",
           "cannot be loaded: it needs the function 'FunctionOfNoLibrary', which none of its libraries has; it "
           "belongs to other versions of them");
    expect("NoLibrary",
           "cannot be loaded: it needs the library libdoctor_absent.so, which is not on this system; install the "
           "package that has it");
    const fs::path bundle = Bundle();
    Expect(Doctor(bundle, "count:zero"), 4, "'" + bundle.string() + "' reports 0 plug-ins");
    Expect(Doctor(bundle, "record:null"), 4,
           "'" + bundle.string() + "' has an incomplete record of its plug-in 1 of 1");
    Expect(Doctor(bundle, "count:throws"), 4,
           "'" + bundle.string() + "' throws an exception out of its entry points, which ends most hosts");
}

TEST_F(CliDoctor, OwnBundlesNeedTheModule) {
    const fs::path bundle = folder_ / "Umbrant.ofx.bundle";
    fs::create_directories(bundle / "Contents" / kPatientFolder);
    fs::copy_file(fs::path(TEST_BINARIES) / "Patient.ofx", Binary(bundle));
    Expect(Doctor(bundle), 4,
           "'" + bundle.string() +
               "' has no umbrant2.so beside Umbrant.ofx; it was not copied as a whole, so copy it again");
    std::ofstream(bundle / "Contents" / kPatientFolder / "umbrant2.so") << "module";
    EXPECT_EQ(Doctor(bundle).code, 0);
}

}  // namespace

}  // namespace umbrant::host
