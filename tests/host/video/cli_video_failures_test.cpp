// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Programs called ffmpeg and ffprobe that are not there, die, hang, talk or stop listening: each with its sentence and
// exit code, and nothing left behind, no file and no process.

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include "host/process/child_process.h"
#include "tests/host/cli/running_program.h"
#include "tests/host/video/clips.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;
using testing::Not;

/// An ffmpeg that has every encoder, and then does this.
std::string Encoder(const std::string& then) {
    return "case \"$*\" in *-encoders*) echo ' V..... prores_ks x'; echo ' V..... ffv1 x'; exit 0;; esac\n"
           "for last; do :; done; file=${last#file:}\n" +
           then;
}

/// An ffprobe that reports a clip of ten frames of 4 x 2 pixels.
constexpr char kProbe[] = R"(case "$*" in
*-show_streams*) echo '{"streams":[{"index":0,"codec_type":"video","codec_name":"png","width":4,"height":2,
"pix_fmt":"rgba","r_frame_rate":"25/1","avg_frame_rate":"25/1","time_base":"1/25"}],"format":{"start_time":"0"}}';;
*) for i in 0 1 2 3 4 5 6 7 8 9; do echo $i,1,K_; done;;
esac)";

/// What makes a file a clip before any tool looks at it.
const std::string kMovBytes(
    "\0\0\0\x14"
    "ftypqt  ",
    12);

class ClipFailures : public Clips {
 protected:
    ClipFailures() { WriteLayer(folder_ / "still.png", 40, 30, {255, 200, 100, 50}); }

    /// No program of this test runs any more, and only these files are there.
    void ExpectNothingLeft(std::ptrdiff_t files) const {
        EXPECT_EQ(folder_.Entries(), files);
        const ProgramRun all = RunProgram({"ps", "-eo", "args"});
        EXPECT_EQ(all.code, 0);
        EXPECT_THAT(all.output, Not(HasSubstr((folder_ / "bin").string())));
    }
};

TEST_F(ClipFailures, OneThatCannotWrite) {
    const struct {
        const char* name;
        std::string script;
        const char* sentence;  ///< behind "cannot write 'out.mov': "
    } rows[] = {
        {"dies at once", Encoder("echo 'no luck today' >&2; exit 7"),
         "ffmpeg ended with exit code 7: no luck today, after "},
        {"dies in the middle", Encoder("head -c 12000 >\"$file\"; echo 'No space left on device' >&2; exit 28"),
         "ffmpeg ended with exit code 28: No space left on device, after "},
        {"is killed", Encoder("head -c 12000 >\"$file\"; kill -9 $$"), "ffmpeg was ended by signal 9 (Killed), after "},
        {"dies at the end", Encoder("cat >\"$file\"; echo 'Error writing trailer' >&2; exit 1"),
         "ffmpeg ended with exit code 1: Error writing trailer, after 20 frames"},
        {"stops listening", Encoder("exec <&-; : >\"$file\"; sleep 0.3; exit 0"),
         "ffmpeg accepted no more frames after "},
        {"writes nothing", Encoder("cat >/dev/null"), "ffmpeg ended without an error, but there is no clip"},
        {"talks and dies", Encoder("yes trouble | head -c 2000000 >&2; echo 'the end' >&2; exit 1"),
         "ffmpeg ended with exit code 1: the end, after "},
        {"has no such encoder", "echo ' V..... png x'",
         "this ffmpeg cannot write ProRes 4444: it was built without the encoder 'prores_ks'"},
        {"does not even list its encoders", "echo 'libfoo.so.3: not found' >&2; exit 127",
         "ffmpeg ended with exit code 127: libfoo.so.3: not found"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Fake("ffmpeg", row.script);
        const Outcome outcome = Render("still.png", "out.mov", {"--frames", "1-20", "--quiet"}, WithFakes());
        EXPECT_EQ(outcome.code, 3) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr("cannot write 'out.mov': " + std::string(row.sentence)));
        EXPECT_EQ(outcome.out, "");
        ExpectNothingLeft(2);
    }
}

TEST_F(ClipFailures, OneThatTalksMuchAndWorks) {
    Fake("ffmpeg", Encoder("yes trouble | head -c 2000000 >&2; cat >\"$file\"; yes trouble | head -c 2000000 >&2"));
    const Outcome outcome = Render("still.png", "out.mov", {"--frames", "1-3", "--quiet", "--no-recipe"}, WithFakes());
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "") << "what a tool prints in success is not repeated";
    EXPECT_EQ(ReadBytes(folder_ / "out.mov").size(), 3u * 40 * 30 * 4);
    EXPECT_EQ(ReadBytes(folder_ / "out.mov").substr(0, 4), "\xC8\x64\x32\xFF");
    ExpectNothingLeft(3);
}

TEST_F(ClipFailures, OneThatCannotRead) {
    WriteBytes(folder_ / "in.mov", kMovBytes);
    const struct {
        const char* name;
        const char* probe;
        const char* script;
        const char* sentence;
    } rows[] = {
        {"dies at once", kProbe, "echo 'no luck today' >&2; exit 7",
         "frame 0: cannot read frame 0 of 'in.mov': ffmpeg ended with exit code 7: no luck today"},
        {"dies in the middle", kProbe, "head -c 100 /dev/zero; echo 'Invalid data' >&2; exit 69",
         "frame 3: cannot read frame 3 of 'in.mov': ffmpeg ended with exit code 69: Invalid data"},
        {"is killed", kProbe, "head -c 100 /dev/zero; kill -SEGV $$",
         "frame 3: cannot read frame 3 of 'in.mov': ffmpeg was ended by signal 11 (Segmentation fault)"},
        {"has less than was reported", kProbe, "head -c 128 /dev/zero",
         "frame 4: cannot read frame 4 of 'in.mov': the clip declares 10 frames, but has 4"},
        {"the other is not there", "exec no-such-program", "exit 0",
         "cannot read 'in.mov': ffprobe ended with exit code 127"},
        {"the other reports nonsense", "echo nonsense", "exit 0",
         "cannot read 'in.mov': ffprobe did not report the streams"},
        {"the other reports other things", "echo '{\"streams\": 5}'", "exit 0",
         "cannot read 'in.mov': ffprobe did not report the streams"},
        {"the other is killed", "kill -9 $$", "exit 0", "cannot read 'in.mov': ffprobe was ended by signal 9 (Killed)"},
        {"a stream without pictures",
         "case \"$*\" in *-show_streams*) echo '{\"streams\":[{\"codec_type\":\"video\","
         "\"index\":0,\"width\":4,\"height\":2}]}';; esac",
         "exit 0", "cannot read 'in.mov': the video stream has no frames"},
        {"pictures beyond all size",
         "echo '{\"streams\":[{\"codec_type\":\"video\",\"index\":0,\"width\":99999,"
         "\"height\":2}]}'",
         "exit 0", "cannot read 'in.mov': too large: 99999 x 2 pixels; no side may be longer than 30000"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Fake("ffprobe", row.probe);
        Fake("ffmpeg", row.script);
        const Outcome outcome = Render("in.mov", "out.##.png", {"--quiet", "--threads", "1"}, WithFakes());
        EXPECT_EQ(outcome.code, 3) << outcome.err;
        EXPECT_THAT(outcome.err, HasSubstr(row.sentence));
    }
}

TEST_F(ClipFailures, OneThatHasMoreThanItTold) {
    WriteBytes(folder_ / "in.mov", kMovBytes);
    Fake("ffprobe", kProbe);
    Fake("ffmpeg", "yes | tr -d '\\n'");
    const Outcome outcome = Render("in.mov", "out.##.png", {"--quiet"}, WithFakes());
    EXPECT_EQ(outcome.code, 0) << outcome.err << "what the file promised is there, and the rest is not waited for";
    EXPECT_TRUE(Exists("out.09.png"));
    EXPECT_FALSE(Exists("out.10.png"));
}

TEST_F(ClipFailures, OneThatIsNotThere) {
    WriteBytes(folder_ / "in.mov", kMovBytes);
    std::filesystem::create_directories(folder_ / "bin");
    const ProgramOptions none{{"PATH=" + (folder_ / "bin").string()}, {}};
    Outcome outcome = Render("still.png", "out.mov", {"--frames", "1-2"}, none);
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err,
              "umbrant: cannot write 'out.mov': clips need 'ffmpeg', which is not in PATH; install ffmpeg (Debian: apt "
              "install ffmpeg)\n");
    outcome = Render("in.mov", "out.##.png", {}, none);
    EXPECT_EQ(outcome.code, 3);
    EXPECT_EQ(outcome.err,
              "umbrant: cannot read 'in.mov': clips need 'ffprobe', which is not in PATH; install ffmpeg (Debian: apt "
              "install ffmpeg)\n");
    outcome = Render("still.png", "out.png", {}, none);
    EXPECT_EQ(outcome.code, 0) << "pictures need none of it";
    Fake("ffmpeg", "exit 0");
    std::filesystem::permissions(folder_ / "bin/ffmpeg", std::filesystem::perms::owner_read);
    std::filesystem::create_directory(folder_ / "bin/ffprobe");
    outcome = Render("in.mov", "out.##.png", {}, none);
    EXPECT_EQ(outcome.code, 3);
    EXPECT_THAT(outcome.err, HasSubstr("'ffprobe', which reads and writes clips, cannot be started: "));
}

TEST_F(ClipFailures, ProgramsOfClipsBlockAndIgnoreNoSignals) {
    // Bits of SIGHUP, SIGINT, SIGQUIT, SIGPIPE and SIGTERM.
    Fake("ffmpeg", Encoder("grep -E '^Sig(Blk|Ign)' /proc/self/status >signals; cat >\"$file\""));
    const Outcome outcome = Render("still.png", "out.mov", {"--frames", "1-2"}, WithFakes());
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    std::istringstream lines(ReadBytes(folder_ / "signals"));
    int seen = 0;
    for (std::string name, bits; lines >> name >> bits; ++seen) {
        EXPECT_EQ(std::stoul(bits, nullptr, 16) & 0x5007, 0u) << name << bits;
    }
    EXPECT_EQ(seen, 2);
}

TEST_F(ClipFailures, ANameOf255Bytes) {
    const std::string name = std::string(251, 'n') + ".mov";
    Fake("ffmpeg", Encoder("cat >\"$file\""));
    const Outcome outcome = Render("still.png", name, {"--frames", "1-2"}, WithFakes());
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(Exists(name));
}

TEST_F(ClipFailures, AnInterruptionEndsEverybodyAtOnce) {
    WriteBytes(folder_ / "in.mov", kMovBytes);
    const std::string hangs = "trap '' INT TERM; : >started; sleep 1000";
    const struct {
        const char* name;
        const char* input;
        std::string probe;
        std::string ffmpeg;
    } rows[] = {
        {"one that takes nothing", "still.png", kProbe, Encoder(": >\"$file\"; " + hangs)},
        {"one that takes all and does not end", "still.png", kProbe, Encoder("cat >\"$file\"; " + hangs)},
        {"one that gives nothing", "in.mov", kProbe, Encoder(hangs)},
        {"one that reports nothing", "in.mov", hangs, Encoder("exit 0")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Fake("ffprobe", row.probe);
        Fake("ffmpeg", row.ffmpeg);
        std::filesystem::remove(folder_ / "started");
        ProgramStart start;
        start.program = UMBRANT_PROGRAM;
        start.arguments = {"render", row.input, "-o", "out.mov", "--frames", "0-9", "--module", TestModule("painter")};
        start.environment = WithFakes().environment;
        start.folder = folder_.Path().string();
        start.output = Stream::Nothing();
        start.errors = Stream::Nothing();
        const struct {
            int signal;
            int code;
        } ends[] = {{SIGINT, 130}, {SIGHUP, 129}, {SIGQUIT, 131}, {SIGTERM, 143}};
        for (const auto& end : ends) {
            SCOPED_TRACE(end.code);
            std::filesystem::remove(folder_ / "started");
            const auto begin = std::chrono::steady_clock::now();
            const auto program = ChildProcess::Start(start);
            ASSERT_TRUE(program) << program.error().sentence;
            EXPECT_TRUE(WaitUntil([&] { return Exists("started"); }));
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            kill((*program)->Process(), end.signal);
            EXPECT_EQ((*program)->Wait().code, end.code);
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(300));
            ExpectNothingLeft(4);
        }
    }
}

}  // namespace

}  // namespace umbrant::host
