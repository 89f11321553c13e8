// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Who may use a preview and with what: attacks and mistakes over a socket, and the answers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <fstream>

#include "host/preview/client_table.h"
#include "tests/host/preview/preview_client.h"

namespace umbrant::host {

namespace {

using testing::HasSubstr;

class PreviewAccess : public testing::Test {
 protected:
    const Folder folder_;
    RunningPreview preview_{folder_, {LAYERS "/card.png", "--renderer", "cpu"}};
};

TEST_F(PreviewAccess, ServesThePageWithItsSafetyHeaders) {
    ASSERT_NE(preview_.Port(), 0) << preview_.Address();
    const WireReply page = preview_.Get("");
    EXPECT_EQ(page.status, 200);
    EXPECT_THAT(page.body, HasSubstr("<!DOCTYPE html>"));
    for (const char* path : {"", "main.js", "title.png", "nothing"}) {
        auto headers = preview_.Get(path).headers;
        EXPECT_EQ(headers["content-security-policy"],
                  "default-src 'self'; img-src 'self' blob:; base-uri 'none'; frame-ancestors 'none'")
            << path;
        EXPECT_EQ(headers["referrer-policy"], "no-referrer") << path;
        EXPECT_EQ(headers["x-content-type-options"], "nosniff") << path;
    }
    EXPECT_EQ(preview_.Get("main.js").headers["content-type"], "text/javascript; charset=utf-8");
    EXPECT_EQ(preview_.Get("nothing").status, 404);
}

TEST_F(PreviewAccess, RefusesWhoeverIsNotItsPage) {
    const std::string port = std::to_string(preview_.Port());
    const std::string path = "/" + preview_.Token() + "/panel";
    std::string wrong = preview_.Token();
    wrong.back() = wrong.back() == '0' ? '1' : '0';
    const struct {
        const char* name;
        std::string line;
        std::map<std::string, std::string> headers;
        int status;
    } rows[] = {
        {"no token", "GET /", {}, 403},
        {"wrong token", "GET /" + wrong + "/panel", {}, 403},
        {"short token", "GET /" + preview_.Token().substr(1) + "/panel", {}, 403},
        {"token without its slash", "GET /" + preview_.Token(), {}, 403},
        {"path that leaves the token", "GET /" + wrong + "/../" + preview_.Token() + "/panel", {}, 403},
        {"name that leads to this machine", "GET " + path, {{"Host", "attacker.example:" + port}}, 403},
        {"another port's host", "GET " + path, {{"Host", "127.0.0.1:1"}}, 403},
        {"no host", "GET " + path, {{"Host", ""}}, 403},
        {"foreign origin", "POST " + path, {{"Origin", "http://attacker.example"}}, 403},
        {"origin of a file", "POST " + path, {{"Origin", "null"}}, 403},
        {"another port's origin", "POST " + path, {{"Origin", "http://127.0.0.1:1"}}, 403},
        {"image in another page", "GET " + path, {{"Sec-Fetch-Site", "cross-site"}}, 403},
        {"other port's page", "GET " + path, {{"Sec-Fetch-Site", "same-site"}}, 403},
        {"unknown method", "DELETE " + path, {}, 405},
        {"preflight", "OPTIONS " + path, {{"Origin", "http://attacker.example"}}, 403},
        {"compressed body", "POST " + path, {{"Content-Encoding", "gzip"}}, 415},
        {"body without a length", "POST " + path, {{"Content-Length", ""}}, 411},
        {"body in chunks", "POST " + path, {{"Transfer-Encoding", "chunked"}, {"Content-Length", ""}}, 411},
        {"length that is no number", "POST " + path, {{"Content-Length", "many"}}, 400},
        {"length without end", "POST " + path, {{"Content-Length", "99999999999999999999999"}}, 413},
    };
    for (const auto& row : rows) {
        const WireReply reply = preview_.Ask(row.line, row.headers);
        EXPECT_EQ(reply.status, row.status) << row.name << ": " << reply.body;
        EXPECT_FALSE(reply.Error().empty()) << row.name << ": " << reply.body;
        EXPECT_EQ(reply.Error().find('\n'), std::string::npos) << row.name;
    }
    EXPECT_EQ(preview_.Ask("GET " + path, {{"Origin", "http://127.0.0.1:" + port}}).status, 200);
    EXPECT_EQ(preview_.Ask("GET " + path, {{"Sec-Fetch-Site", "same-origin"}}).status, 200);
}

TEST_F(PreviewAccess, AHugeUploadIsRefusedBeforeItIsSent) {
    const WireReply layer =
        preview_.Ask("POST /" + preview_.Token() + "/layer?name=a.png", {{"Content-Length", "300000000"}});
    EXPECT_EQ(layer.status, 413);
    EXPECT_THAT(layer.Error(), HasSubstr("larger than 256 MiB"));
    const WireReply message = preview_.Ask("POST /" + preview_.Token() + "/draw", {{"Content-Length", "2000000"}});
    EXPECT_EQ(message.status, 413);
    EXPECT_EQ(preview_.Get("panel").status, 200) << "the session goes on";
}

TEST_F(PreviewAccess, ImagesAreTakenAndBrokenOnesGetASentence) {
    const std::string title = ReadBytes(LAYERS "/title.png");
    const WireReply good = preview_.Post("layer?name=my%20title.png", title);
    ASSERT_EQ(good.status, 200) << good.body;
    EXPECT_EQ(good.Json()["name"], "my title.png");
    EXPECT_EQ(good.Json()["width"], 1920);
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"empty.png", ""},
        {"text.png", "this is no image"},
        {"half.png", title.substr(0, title.size() / 2)},
        {"half.exr", ReadBytes(LAYERS "/neon.exr").substr(0, 5000)},
        {"half.jpg", ReadBytes(LAYERS "/dusk.jpg").substr(0, 300)},
    };
    for (const auto& row : rows) {
        const WireReply reply = preview_.Post(std::string("layer?name=") + row.name, row.bytes);
        EXPECT_EQ(reply.status, 422) << row.name << reply.body;
        EXPECT_THAT(reply.Error(), HasSubstr(std::string("cannot read '") + row.name)) << row.name;
    }
    EXPECT_EQ(preview_.Post("layer?name=photo", ReadBytes(LAYERS "/dusk.jpg")).status, 200);
    EXPECT_EQ(preview_.Post("layer?name=neon.exr", ReadBytes(LAYERS "/neon.exr")).Json()["bits"], 16);
    EXPECT_EQ(preview_.Post("example?name=card.png", "").status, 200);
    for (const char* name : {"main.js", "", "../../etc/passwd", "none.png"}) {
        EXPECT_EQ(preview_.Post(std::string("example?name=") + name, "").status, 404) << name;
    }
    EXPECT_EQ(preview_.Post("layer?name=%2e%2e%2fsecret%0a.png", title).Json()["name"], "secret_.png");
}

TEST_F(PreviewAccess, WrongMessagesGetASentence) {
    EXPECT_EQ(preview_.Post("draw", "no message").status, 400);
    EXPECT_EQ(preview_.Post("press?row=x", "{}").status, 400);
    Page page(preview_);
    ASSERT_TRUE(page.IsConnected());
    EXPECT_EQ(page.Draw(nlohmann::json::object()), 202);
    const auto frame = page.Await("frame");
    const std::string number = std::to_string(frame.value("frame", 0));
    const std::string client = std::to_string(page.Client());
    EXPECT_EQ(preview_.Get("frame?client=" + client + "&frame=" + number).status, 200);
    EXPECT_EQ(preview_.Get("frame?client=" + client + "&frame=999").status, 410);
    EXPECT_EQ(preview_.Get("frame?client=999&frame=" + number).status, 410) << "another page's";
    EXPECT_EQ(preview_.Get("frame").status, 410);
    EXPECT_EQ(preview_.Get("pixel?client=" + client + "&frame=" + number + "&x=0&y=0").status, 410) << "8 bits";
    EXPECT_EQ(preview_.Get("original?layer=77").status, 410);
    EXPECT_EQ(preview_.Get("row?index=12").status, 404);
}

TEST_F(PreviewAccess, OnePageTooManyIsRefusedUntilAnotherOneCloses) {
    std::vector<std::unique_ptr<Page>> pages;
    for (std::size_t i = 0; i < kMostClients; ++i) {
        pages.push_back(std::make_unique<Page>(preview_));
        ASSERT_TRUE(pages.back()->IsConnected()) << i;
    }
    EXPECT_EQ(preview_.Get("events").status, 503);
    pages.pop_back();
    // The server learns of it with what it writes next.
    bool isIn = false;
    for (int i = 0; i < 3000 && !isIn; ++i) {
        isIn = Page(preview_).IsConnected();
        if (!isIn) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_TRUE(isIn);
}

TEST_F(PreviewAccess, APortThatIsTakenIsAUsageError) {
    const Outcome run = RunUmbrant(folder_, {"preview", "--no-open", "--port", std::to_string(preview_.Port())});
    EXPECT_EQ(run.code, 2);
    EXPECT_THAT(run.err, HasSubstr("port " + std::to_string(preview_.Port()) + " of 127.0.0.1 cannot be used"));
    EXPECT_EQ(run.out, "");
}

TEST(PreviewStart, WrongArgumentsEndItBeforeAnythingIsServed) {
    const Folder folder;
    WriteLayer(folder / "in.png", 2, 2, {255, 1, 2, 3});
    std::ofstream(folder / "broken.png") << "no image";
    const struct {
        std::vector<std::string> arguments;
        int code;
        const char* text;
    } rows[] = {
        {{"none.png"}, 3, "cannot read 'none.png'"},
        {{"broken.png"}, 3, "cannot read 'broken.png'"},
        {{"in.png", "--texture", "none.png"}, 3, "cannot read 'none.png'"},
        {{"in.png", "--set", "style/distnce=3"}, 2, "style/distance"},
        {{"in.png", "--preset", "none.json"}, 3, "none.json"},
        {{"in.png", "--port", "70000"}, 2, "70000"},
        {{"in.png", "--idle-exit", "-1"}, 2, "-1"},
        {{"in.png", "--depth", "16"}, 2, "16"},
        {{"in.png", "--module", "none.so"}, 4, "none.so"},
        {{"in.png", "second.png"}, 2, "second.png"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments = {"preview", "--no-open"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        const Outcome run = RunUmbrant(folder, arguments);
        EXPECT_EQ(run.code, row.code) << row.text << run.err;
        EXPECT_THAT(run.err, HasSubstr(row.text));
        EXPECT_EQ(run.out, "");
    }
}

TEST(PreviewStart, ReportsWhenNoBrowserCanBeOpenedAndGoesOn) {
    const Folder folder;
    const Outcome run =
        RunUmbrant(folder, {"preview", "--idle-exit", "0.01"}, {{"PATH=" + folder.Path().string()}, ""});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("http://127.0.0.1:"));
    EXPECT_THAT(run.err, HasSubstr("no browser was opened: xdg-open cannot be started"));
}

TEST(PreviewStart, OpensTheAddressInABrowser) {
    const Folder folder;
    const auto given = folder / "given";
    std::ofstream(folder / "xdg-open") << "#!/bin/sh\necho \"$1\" > '" << given.string() << "'\n";
    std::filesystem::permissions(folder / "xdg-open", std::filesystem::perms::owner_all);
    const Outcome run =
        RunUmbrant(folder, {"preview", "--idle-exit", "0.02"}, {{"PATH=" + folder.Path().string()}, ""});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    for (int i = 0; i < 3000 && ReadBytes(given).empty(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(ReadBytes(given), run.out);
}

TEST(PreviewEnd, ASignalEndsItAtRestAndInTheMiddleOfAFrame) {
    const Folder folder;
    for (const bool isDrawing : {false, true}) {
        for (const auto& [signal, code] : {std::pair(SIGINT, 130), std::pair(SIGTERM, 143)}) {
            RunningPreview preview(folder, {LAYERS "/title.png", "--renderer", "cpu"});
            Page page(preview);
            ASSERT_TRUE(page.IsConnected());
            if (isDrawing) {
                EXPECT_EQ(page.Draw({{"quality/samples", "256"}}), 202);
            }
            kill(preview.Process().Process(), signal);
            EXPECT_EQ(preview.Process().Wait().code, code);
            EXPECT_EQ(page.Await("end"), nullptr);
            EXPECT_FALSE(Wire(preview.Port()).IsOpen());
        }
    }
}

TEST(PreviewEnd, EndsSomeTimeAfterTheLastPageWasClosed) {
    const Folder folder;
    RunningPreview preview(folder, {"--idle-exit", "0.02"});
    {
        // A slow machine may be too late for it.
        const Page page(preview);
    }
    EXPECT_EQ(preview.Process().Wait().code, 0);
}

}  // namespace

}  // namespace umbrant::host
