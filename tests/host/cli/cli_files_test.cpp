// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// What the program reads and writes besides plain files, what it refuses to replace, and what it notes about an input.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "host/process/child_process.h"
#include "tests/host/cli/in_process.h"
#include "tests/host/image/picture_files.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class CliFiles : public testing::Test {
 protected:
    CliFiles() { WriteLayer(folder_ / "in.png", 6, 4, {255, 1, 2, 3}); }

    Outcome Render(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "render");
        arguments.insert(arguments.end(), {"--module", TestModule("painter")});
        return RunInProcess(folder_, arguments);
    }
    /// The same as a process with these standard streams.
    ProgramRun RenderBetween(const Stream& input, const std::vector<std::string>& arguments,
                             const Stream& output = {}) const {
        std::vector<std::string> words = {UMBRANT_PROGRAM, "render"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        words.insert(words.end(), {"--module", TestModule("painter")});
        ProgramStart start;
        start.folder = folder_.Path().string();
        start.input = input;
        start.output = output;
        return RunProgram(words, start);
    }
    /// The same with the file coming out of a pipe.
    ProgramRun RenderPiped(const std::string& file, const std::vector<std::string>& arguments) const {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) return {};
        ProgramStart start;
        start.program = "cat";
        start.arguments = {(folder_ / file).string()};
        start.output = Stream::Descriptor(ends[1]);
        const auto cat = ChildProcess::Start(start);
        close(ends[1]);
        const ProgramRun run = RenderBetween(Stream::Descriptor(ends[0]), arguments);
        close(ends[0]);
        return run;
    }

    Folder folder_;
};

TEST_F(CliFiles, ADashIsStandardInputAndOutput) {
    for (const char* format : {"png", "tif", "exr", "jpg"}) {
        SCOPED_TRACE(format);
        const std::string file = std::string("file.") + format;
        ASSERT_EQ(Render({"in.png", "-o", file}).code, 0);
        const ProgramRun run =
            RenderBetween(Stream::File("in.png"), {"-", "-o", "-", "--format", format}, Stream::File("piped"));
        EXPECT_EQ(run.code, 0) << run.errors;
        EXPECT_TRUE(ReadBytes(folder_ / "piped") == ReadBytes(folder_ / file));
    }
    const ProgramRun piped = RenderPiped("in.png", {"in.png", "-o", "t.png", "--texture", "-"});
    EXPECT_EQ(piped.code, 0) << piped.errors;
    EXPECT_EQ(piped.output, "t.png\n");
    const ProgramRun empty = RenderBetween(Stream::Nothing(), {"-", "-o", "a.png"});
    EXPECT_EQ(empty.code, 3);
    EXPECT_EQ(empty.errors, "umbrant: cannot read '-': standard input is empty\n");
    WriteBytes(folder_ / "text", "Dear diary\n");
    const ProgramRun text = RenderBetween(Stream::File("text"), {"-", "-o", "a.png"});
    EXPECT_EQ(text.code, 3);
    EXPECT_THAT(text.errors, HasSubstr("umbrant: cannot read '-': not an image that can be read ("));
}

struct Refusal {
    const char* name;
    std::vector<std::string> arguments;
    const char* sentence;
};

const Refusal kMisfits[] = {
    {"no format",
     {"in.png", "-o", "-"},
     "standard output has no extension; name its format with --format png, tif, exr or jpg"},
    {"a format and an extension",
     {"in.png", "-o", "a.png", "--format", "tif"},
     "--format applies to standard output only ('-o -'); the extension of 'a.png' names its format"},
    {"two results",
     {"in.png", "-o", "-", "--format", "png", "--json"},
     "--json and '-o -' both write to standard output; write the image to a file"},
    {"one input twice",
     {"-", "-o", "a.png", "--texture", "-"},
     "standard input can be the layer or the texture, not both"},
    {"many frames of one image",
     {"-", "-o", "a.@.png", "--frames", "1-2"},
     "'-' is a single image; the frames of a sequence need files"},
    {"the preset",
     {"in.png", "-o", "preset.png", "--preset", "preset.png"},
     "'preset.png' is both input and output; give the output another name"},
    {"the preset among frames",
     {"in.png", "-o", "preset.@.png", "--preset", "preset.2.png", "--frames", "1-2"},
     "'preset.2.png' is both input and output; give the output another name"},
    {"the texture",
     {"in.png", "-o", "./texture.png", "--texture", "texture.png"},
     "'./texture.png' is both input and output; give the output another name"},
    {"a depth of files",
     {"in.png", "-o", "a.png", "--depth", "16"},
     "the effect renders in 8 or 32 bits; --output-depth 16 sets the depth of the file"},
    {"another one",
     {"in.png", "-o", "a.exr", "--depth", "half"},
     "the effect renders in 8 or 32 bits; --output-depth half sets the depth of the file"},
    {"no depth at all",
     {"in.png", "-o", "a.png", "--depth", "7"},
     "'7' is not 8 or 32, the bits of a channel in the effect"},
    {"a depth that the format lacks",
     {"in.png", "-o", "a.png", "--output-depth", "half"},
     ".png has no channels of 'half'; use --output-depth with one of: 8 16"},
    {"the same of frames",
     {"in.png", "-o", "a.@.jpg", "--output-depth", "16", "--frames", "1-2"},
     ".jpg has no channels of '16'; use --output-depth with one of: 8"},
    {"a layer that is not there",
     {"in.png", "-o", "a.png", "--layer", "diffuse"},
     "'in.png' has no layer 'diffuse'; its channels are R, G, B, A"},
    {"a part that is not there", {"in.png", "-o", "a.png", "--part", "3"}, "'in.png' has no part '3'; its parts are 0"},
};

TEST_F(CliFiles, WhatDoesNotFitTogetherIsRefused) {
    WriteBytes(folder_ / "preset.png", "{\"version\": 1, \"values\": {}}");
    WriteBytes(folder_ / "preset.2.png", "{\"version\": 1, \"values\": {}}");
    WriteLayer(folder_ / "texture.png", 2, 2, {255, 1, 2, 3});
    const auto entries = folder_.Entries();
    for (const Refusal& row : kMisfits) {
        SCOPED_TRACE(row.name);
        const Outcome outcome = Render(row.arguments);
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(folder_.Entries(), entries);
    }
    for (const char* command : {"curves", "panel"}) {
        SCOPED_TRACE(command);
        const Outcome outcome = RunInProcess(folder_, {command, "-o", "preset.png", "--preset", "preset.png"});
        EXPECT_EQ(outcome.code, 2);
        EXPECT_THAT(outcome.err, HasSubstr("'preset.png' is both input and output"));
    }
    EXPECT_EQ(ReadBytes(folder_ / "preset.png"), ReadBytes(folder_ / "preset.2.png"));
}

TEST_F(CliFiles, ChannelsAreStoredAsAskedFor) {
    ASSERT_EQ(Render({"in.png", "-o", "a.png", "--output-depth", "16"}).code, 0);
    EXPECT_EQ(ReadRaw(folder_ / "a.png").layout.format, OIIO::TypeDesc::UINT16);
    ASSERT_EQ(Render({"in.png", "-o", "a.tif", "--depth", "32", "--output-depth", "8"}).code, 0);
    EXPECT_EQ(ReadRaw(folder_ / "a.tif").layout.format, OIIO::TypeDesc::UINT8);
    ASSERT_EQ(Render({"in.png", "-o", "a.@.exr", "--output-depth", "float", "--frames", "1-2"}).code, 0);
    EXPECT_EQ(ReadRaw(folder_ / "a.2.exr").layout.format, OIIO::TypeDesc::FLOAT);
}

TEST_F(CliFiles, WhatIsLeftOutOfAnInputIsNotedOnce) {
    OIIO::ImageSpec layout(3, 2, 5, OIIO::TypeDesc::HALF);
    layout.channelnames = {"R", "G", "B", "A", "Z"};
    layout.alpha_channel = 3;
    const std::string note = " has 5 channels: R, G, B, A were read, Z were left out; --layer reads one of: Z\n";
    for (const char* name : {"in.1.exr", "in.2.exr"}) WriteFile(folder_ / name, layout, {1, 1, 1, 1, 0.5f}, false);
    EXPECT_EQ(Render({"in.1.exr", "-o", "a.exr"}).err, "note: 'in.1.exr'" + note);
    EXPECT_EQ(Render({"in.1.exr", "-o", "a.exr", "--quiet"}).err, "");
    EXPECT_EQ(Render({"in.1.exr", "-o", "a.exr", "--layer", "Z"}).err, "");
    const std::string err = Render({"in.@.exr", "-o", "a.@.exr"}).err;
    EXPECT_THAT(err, HasSubstr("note: 'in.1.exr'" + note));
    EXPECT_EQ(err.find("note: "), err.rfind("note: "));
}

/// Files in a folder that the program may not enter. Also root is kept from it, once it has lost the right to look into
/// every one.
class CliForbiddenFolder : public CliFiles {
 protected:
    CliForbiddenFolder() {
        fs::create_directory(folder_ / "locked");
        for (const char* name : {"in.png", "in.mov", "preset.json", "module.so"}) {
            fs::copy_file(folder_ / "in.png", folder_ / "locked" / name);
        }
        fs::permissions(folder_ / "locked", fs::perms::none);
    }
    ~CliForbiddenFolder() override { fs::permissions(folder_ / "locked", fs::perms::owner_all); }

    const std::string plain_ =
        geteuid() == 0 ? "setpriv --bounding-set -dac_override,-dac_read_search --inh-caps -all" : "";
};

TEST_F(CliForbiddenFolder, FilesInItAreNotCalledMissing) {
    const struct {
        const char* name;
        const char* arguments;
        int code;
        const char* sentence;
    } rows[] = {
        {"an image", "render locked/in.png -o a.png", 3, "cannot read 'locked/in.png'"},
        {"a place for an image", "render in.png -o locked/a.png", 3, "cannot write 'locked/a.png'"},
        {"a texture", "render in.png -o a.png --texture locked/in.png", 3, "cannot read 'locked/in.png'"},
        {"a clip", "render locked/in.mov -o a.@.png", 3, "cannot read 'locked/in.mov'"},
        {"a clip as texture", "render in.png -o a.@.png --texture locked/in.mov", 3, "cannot read 'locked/in.mov'"},
        {"a preset", "render in.png -o a.png --preset locked/preset.json", 3,
         "cannot read the preset 'locked/preset.json'"},
        {"a module", "info --module locked/module.so", 4, "cannot load the module 'locked/module.so'"},
        {"a module to judge", "validate locked/module.so", 4, "cannot load the module 'locked/module.so'"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> words = Words(plain_);
        words.emplace_back(UMBRANT_PROGRAM);
        for (const std::string& word : Words(row.arguments)) words.push_back(word);
        ProgramStart start;
        start.folder = folder_.Path().string();
        start.environment = {"UMBRANT_MODULE"};
        const ProgramRun run = RunProgram(words, start);
        EXPECT_EQ(run.code, row.code);
        EXPECT_EQ(run.errors, std::string("umbrant: ") + row.sentence + ": Permission denied\n");
    }
}

}  // namespace

}  // namespace umbrant::host
