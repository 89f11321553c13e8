// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// `umbrant doctor openfx`: bundles in wrong places, with wrong names and for other systems, and the search for them.

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/doctor/openfx/bundle.h"
#include "tests/host/cli/program.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

#if defined(__x86_64__)
constexpr char kFolder[] = "Linux-x86-64";
constexpr char kThis[] = "x86-64";
constexpr char kOther[] = "64-bit ARM";
constexpr int kOtherMachine = EM_AARCH64;
#else
constexpr char kFolder[] = "Linux-aarch64";
constexpr char kThis[] = "64-bit ARM";
constexpr char kOther[] = "x86-64";
constexpr int kOtherMachine = EM_X86_64;
#endif

class DoctorPlaces : public testing::Test {
 protected:
    fs::path Bundle(const fs::path& parent) const {
        const fs::path bundle = parent / "Patient.ofx.bundle";
        fs::create_directories(bundle / "Contents" / kFolder);
        fs::copy_file(fs::path(TEST_BINARIES) / "Patient.ofx", bundle / "Contents" / kFolder / "Patient.ofx");
        return bundle;
    }
    void Expect(const fs::path& named, ErrorKind kind, const std::string& sentence) const {
        const auto bundle = CheckBundle(named);
        ASSERT_FALSE(bundle);
        EXPECT_EQ(bundle.error().kind, kind);
        EXPECT_EQ(bundle.error().sentence, sentence);
    }
    std::string Path(const std::string& below) const { return (folder_ / below).string(); }

    const Folder folder_;
};

TEST_F(DoctorPlaces, WhatIsNoBundle) {
    const fs::path bundle = Bundle(folder_.Path());
    Expect(Path("none"), ErrorKind::kFile, "'" + Path("none") + "' does not exist; name a folder NAME.ofx.bundle");
    Expect(folder_.Path(), ErrorKind::kFile,
           "'" + folder_.Path().string() + "' is not a bundle but has one in it; name '" + bundle.string() + "'");
    for (const fs::path& part : {bundle / "Contents", bundle / "Contents" / kFolder / "Patient.ofx"}) {
        Expect(part, ErrorKind::kFile,
               "'" + part.string() + "' is a part of a bundle; name the bundle, '" + bundle.string() + "'");
    }
    std::ofstream(folder_ / "file.ofx.bundle") << "text";
    Expect(Path("file.ofx.bundle"), ErrorKind::kFile,
           "'" + Path("file.ofx.bundle") + "' is a file; an OpenFX plug-in is a folder NAME.ofx.bundle");
    fs::create_directory(folder_ / "empty");
    Expect(
        Path("empty"), ErrorKind::kFile,
        "'" + Path("empty") + "' is not a bundle: a bundle is a folder NAME.ofx.bundle with the folder Contents in it");
}

TEST_F(DoctorPlaces, WrongLevelsAndNames) {
    const fs::path bundle = Bundle(folder_ / "Patient.ofx.bundle");
    Expect(bundle.parent_path(), ErrorKind::kFile,
           "'" + Path("Patient.ofx.bundle") + "' is one folder too deep: the bundle is '" + bundle.string() +
               "'; move it up, to the place of 'Patient.ofx.bundle'");
    fs::create_directories(folder_ / "flat.ofx.bundle" / kFolder);
    Expect(Path("flat.ofx.bundle"), ErrorKind::kFile,
           "'" + Path("flat.ofx.bundle") + "' has " + kFolder + " where Contents/" + kFolder +
               " should be; put a folder Contents between");
    fs::create_directories(folder_ / "bare.ofx.bundle");
    Expect(Path("bare.ofx.bundle"), ErrorKind::kFile,
           "'" + Path("bare.ofx.bundle") + "' has no folder Contents; it was not copied as a whole, so copy it again");
    fs::rename(bundle, folder_ / "Renamed.ofx.bundle");
    Expect(Path("Renamed.ofx.bundle"), ErrorKind::kFile,
           "'" + Path("Renamed.ofx.bundle") +
               "' was renamed: hosts look for 'Renamed.ofx' in it, and it has 'Patient.ofx'; name the bundle "
               "'Patient.ofx.bundle'");
    fs::remove(folder_ / "Renamed.ofx.bundle" / "Contents" / kFolder / "Patient.ofx");
    Expect(Path("Renamed.ofx.bundle"), ErrorKind::kFile,
           "'" + Path("Renamed.ofx.bundle") + "' has no Contents/" + kFolder +
               "/Renamed.ofx; it was not copied as a whole, so copy it again");
    fs::rename(folder_ / "Renamed.ofx.bundle", folder_ / "Renamed");
    Expect(Path("Renamed"), ErrorKind::kFile,
           "'" + Path("Renamed") +
               "' has the contents of a bundle, but hosts look only for names that end in .ofx.bundle; give the folder "
               "its "
               "first name again");
}

TEST_F(DoctorPlaces, OtherSystemsAndProcessors) {
    const fs::path bundle = Bundle(folder_.Path());
    const fs::path binary = bundle / "Contents" / kFolder / "Patient.ofx";
    const std::string build = std::string("; use the build for ") + kThis + " Linux";
    const auto expect = [&](std::string bytes, const std::string& what) {
        bytes.resize(64, '\0');
        std::ofstream(binary, std::ios::binary) << bytes;
        Expect(bundle, ErrorKind::kModule, "'" + binary.string() + "' " + what + build);
    };
    std::string elf = std::string("\x7f") + "ELF" + std::string(14, '\0');
    elf += static_cast<char>(kOtherMachine & 255);
    elf += static_cast<char>(kOtherMachine >> 8);
    expect(elf, std::string("is for ") + kOther + ", and this machine has " + kThis);
    expect("\xCF\xFA\xED\xFE", "is for macOS, and this is Linux");
    expect("MZ", "is for Windows, and this is Linux");
    expect("text", "is not a library for Linux");
    std::ofstream(binary) << "x";
    Expect(bundle, ErrorKind::kModule, "'" + binary.string() + "' is too short to be a library" + build);
    fs::rename(bundle / "Contents" / kFolder, bundle / "Contents/Win64");
    fs::create_directory(bundle / "Contents/MacOS");
    Expect(bundle, ErrorKind::kModule,
           "'" + bundle.string() + "' is not for this system: it has no Contents/" + kFolder + ", only MacOS, Win64" +
               build);
}

TEST_F(DoctorPlaces, WhatHostsFind) {
    const fs::path first = Bundle(folder_ / "b"), deep = Bundle(folder_ / "a/one/two");
    Bundle(folder_ / "a/@off");
    // A link that leads back up ends nowhere.
    fs::create_directory_symlink(folder_ / "c", folder_ / "c");
    const auto folders = OpenFxFolders((Path("b") + ":;" + Path("a") + ";" + Path("c")).c_str());
    EXPECT_THAT(folders, ElementsAre(Path("b"), Path("a"), Path("c"), "/usr/OFX/Plugins"));
    const auto found = FindBundles({folders[0], folders[1], folders[2]});
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[0].folder, first);
    EXPECT_EQ(found[0].depth, 0);
    EXPECT_EQ(found[1].folder, deep);
    EXPECT_EQ(found[1].depth, 2);
    EXPECT_THAT(OpenFxFolders(nullptr), ElementsAre("/usr/OFX/Plugins"));
}

TEST_F(DoctorPlaces, WithoutABundleAllThatHostsFind) {
    Bundle(folder_ / "well");
    const fs::path wrong = folder_ / "wrong/Flat.ofx.bundle";
    fs::create_directories(wrong);
    const Outcome outcome =
        RunUmbrant(folder_, {"doctor", "openfx"}, {{"OFX_PLUGIN_PATH=" + folder_.Path().string()}, ""});
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.out, HasSubstr("Patient.ofx.bundle' is in order: 'Patient' "));
    EXPECT_THAT(outcome.out,
                HasSubstr("Patient.ofx.bundle' is 1 folder below the folder that hosts look in; some hosts look "
                          "no deeper than that folder, so move it up.\n"));
    EXPECT_THAT(outcome.out, HasSubstr("'" + wrong.string() + "' has no folder Contents"));
}

TEST_F(DoctorPlaces, Usage) {
    Outcome outcome = RunUmbrant(folder_, {"doctor", "teeth"});
    EXPECT_EQ(outcome.code, 2);
    EXPECT_THAT(outcome.err, HasSubstr("openfx"));
    outcome = RunUmbrant(folder_, {"doctor", "openfx", "x", "--timeout", "0"});
    EXPECT_EQ(outcome.code, 2);
    outcome = RunUmbrant(folder_, {"--examination-process", "openfx"});
    EXPECT_EQ(outcome.code, 2);
}

}  // namespace

}  // namespace umbrant::host
