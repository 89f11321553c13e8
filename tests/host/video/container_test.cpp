// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The container of a clip, by its first bytes; and files that would make ffmpeg open other files, which are refused
// before any tool sees them.

#include "host/video/container.h"

#include "tests/host/video/clips.h"

namespace umbrant::host {

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

/// Packets of a transport stream: `before` bytes, the sync byte, and the rest.
std::string Packets(int count, std::size_t before, std::size_t length) {
    std::string bytes;
    for (int i = 0; i < count; ++i) {
        std::string packet(length, '\1');
        packet[before] = 0x47;
        bytes += packet;
    }
    return bytes;
}

TEST(Container, IsKnownByItsFirstBytes) {
    const struct {
        const char* name;
        std::string bytes;
        const char* demuxer;
    } rows[] = {
        {"QuickTime", "\0\0\0\x14"s + "ftypqt  ", "mov"},
        {"QuickTime without a type", "\0\0\0\x08"s + "wide\0\0\0\0mdat"s, "mov"},
        {"QuickTime that begins with its index", "\0\0\x01\0"s + "moov", "mov"},
        {"Matroska", "\x1A\x45\xDF\xA3"s, "matroska"},
        {"AVI", "RIFF\x10\0\0\0AVI LIST"s, "avi"},
        {"MXF", "\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01\x02\x04\0"s, "mxf"},
        {"MXF behind other bytes", std::string(500, 'x') + "\x06\x0E\x2B\x34\x02\x05\x01\x01\x0D\x01\x02\x01\x01\x02"s,
         "mxf"},
        {"NUT", "nut/multimedia container\0"s, "nut"},
        {"a transport stream", Packets(5, 0, 188), "mpegts"},
        {"a transport stream with times", Packets(5, 4, 192), "mpegts"},
        {"a transport stream with parity", Packets(5, 0, 204), "mpegts"},
        {"a program stream", "\0\0\x01\xBA"s, "mpeg"},
        {"MPEG video alone", "\0\0\x01\xB3"s, "mpegvideo"},
        {"Ogg", "OggS\0"s, "ogg"},
        {"ASF", "\x30\x26\xB2\x75\x8E\x66\xCF\x11"s, "asf"},
        {"FLV", "FLV\1"s, "flv"},
        {"YUV4MPEG", "YUV4MPEG2 W4 H2", "yuv4mpegpipe"},
        {"nothing", "", ""},
        {"a letter", "G", ""},
        {"words", "these are no pictures", ""},
        {"a sound", "RIFF\x10\0\0\0WAVEfmt "s, ""},
        {"a playlist", "#EXTM3U\n", ""},
        {"a picture", "\x89PNG\r\n\x1A\n"s, ""},
    };
    for (const auto& row : rows) EXPECT_EQ(DemuxerOf(row.bytes), row.demuxer) << row.name;
}

TEST(Container, IsTheOnlyFormatThatMayBeOpened) {
    EXPECT_THAT(InputArguments("-a.mov", "mov"), ElementsAre("-protocol_whitelist", "file,pipe", "-format_whitelist",
                                                             "mov", "-f", "mov", "-i", "file:-a.mov"));
}

/// Texts that ffmpeg takes for a clip that is in other files.
const std::pair<const char*, std::string> kPlaylists[] = {
    {"HLS", "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:10\n#EXTINF:1,\nsecret.ts\n#EXT-X-ENDLIST\n"},
    {"HLS with a byte order mark", "\xEF\xBB\xBF#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXTINF:1,\nsecret.ts\n"},
    {"a list to join", "ffconcat version 1.0\nfile secret.mov\n"},
    {"a list to join without a head", "file 'secret.mov'\n"},
    {"a session description",
     "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=secret\nc=IN IP4 127.0.0.1\nt=0 0\nm=video 5004 RTP/AVP 96\n"},
    {"a DASH manifest",
     "<?xml version=\"1.0\"?>\n<MPD xmlns=\"urn:mpeg:dash:schema:mpd:2011\" type=\"static\"><Period><AdaptationSet>"
     "<Representation id=\"1\"><BaseURL>secret.mov</BaseURL></Representation></AdaptationSet></Period></MPD>\n"},
    {"an IMF composition",
     "<?xml version=\"1.0\"?>\n<CompositionPlaylist xmlns=\"http://www.smpte-ra.org/schemas/2067-3/2016\">"
     "<Id>urn:uuid:0</Id></CompositionPlaylist>\n"},
    {"an IMF asset map", "<?xml version=\"1.0\"?>\n<AssetMap><Path>secret.mxf</Path></AssetMap>\n"},
    {"SMIL", "<smil><body><video src=\"secret.mov\"/></body></smil>\n"},
    {"Windows Media", "<asx version=\"3.0\"><entry><ref href=\"secret.mov\"/></entry></asx>\n"},
    {"a reference to a stream", "RTSPtextRTSP://localhost/secret.mov\n"},
    {"a playlist of a player", "[playlist]\nFile1=secret.mov\nNumberOfEntries=1\n"},
    {"subtitles of a disc", "# VobSub index file, v7\n"},
    {"a script", "AviSource(\"secret.avi\")\n"},
};

TEST_F(Clips, APlaylistThatIsCalledAClipOpensNoOtherFile) {
    WriteLayer(folder_ / "still.png", 10, 6, {255, 200, 100, 50});
    for (const char* tool : {"ffprobe", "ffmpeg"}) Fake(tool, "touch started; exit 1");
    for (const auto& [kind, text] : kPlaylists) {
        for (const std::string name : {"list.mov", "list.mp4"}) {
            SCOPED_TRACE(kind + (" as " + name));
            WriteBytes(folder_ / name, text);
            const std::string sentence = "umbrant: cannot read '" + name +
                                         "': not a clip; clips are QuickTime, MP4, Matroska, WebM, AVI, MXF, NUT, "
                                         "MPEG, Ogg, ASF, FLV and YUV4MPEG files\n";
            const Outcome layer = Render(name, "out.##.png", {}, WithFakes());
            EXPECT_EQ(layer.code, 3);
            EXPECT_EQ(layer.err, sentence);
            if (name != "list.mov") continue;
            const Outcome texture = Render("still.png", "out.png", {"--texture", name, "--frames", "0"}, WithFakes());
            EXPECT_EQ(texture.code, 3);
            EXPECT_EQ(texture.err, sentence);
        }
    }
    EXPECT_FALSE(Exists("started")) << "no tool sees such a file";
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
        EXPECT_THAT(entry.path().filename().string(), testing::Not(testing::HasSubstr("out")));
    }
}

TEST_F(Clips, EveryContainerIsStillRead) {
    NEEDS_FFMPEG();
    const struct {
        const char* name;
        const char* arguments;
    } rows[] = {
        {"a.mov", "-c:v png"},         {"a.mp4", "-c:v mpeg4"},      {"a.mkv", "-c:v ffv1"},
        {"a.webm", "-c:v libvpx-vp9"}, {"a.avi", "-c:v mpeg4"},      {"a.mxf", "-c:v mpeg2video"},
        {"a.nut", "-c:v ffv1"},        {"a.ts", "-c:v mpeg2video"},  {"a.m2ts", "-c:v mpeg2video"},
        {"a.mpg", "-c:v mpeg1video"},  {"a.vob", "-c:v mpeg2video"}, {"a.wmv", "-c:v wmv2"},
        {"a.flv", "-c:v flv"},         {"a.3gp", "-c:v mpeg4"},      {"a.y4m", "-pix_fmt yuv420p"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Ffmpeg("-f lavfi -i testsrc=s=64x48:r=25:d=0.2 " + std::string(row.arguments) + " " + row.name);
        const auto demuxer = ReadDemuxer((folder_ / row.name).string());
        ASSERT_TRUE(demuxer) << demuxer.error().sentence;
        const Outcome outcome = Render(row.name, std::string(row.name) + ".mkv", {"--rate", "25"});
        EXPECT_EQ(outcome.code, 0) << outcome.err;
    }
}

}  // namespace

}  // namespace umbrant::host
