// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The parts of a preview without a server: what waits and what is replaced, the size of drafts, the page's messages.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "host/preview/access.h"
#include "host/preview/client_table.h"
#include "host/preview/draft_size.h"
#include "host/preview/draw_request.h"
#include "host/preview/layer_store.h"
#include "tests/host/image/filled_worlds.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

using std::chrono::milliseconds;
using testing::HasSubstr;

DrawRequest RequestOf(int client, std::int64_t serial) {
    DrawRequest request;
    request.client = client;
    request.serial = serial;
    return request;
}

TEST(ClientTable, TheNewestRequestOfAPageReplacesTheOlderOnes) {
    ClientTable clients;
    const int page = *clients.Add();
    for (int serial : {1, 2, 3}) EXPECT_TRUE(clients.Submit(RequestOf(page, serial)));
    const auto work = clients.Next({});
    EXPECT_EQ(std::get<DrawRequest>(work).serial, 3);
    clients.Post([] {});
    EXPECT_TRUE(std::holds_alternative<ClientTable::Task>(clients.Next({}))) << "no request is left";
    EXPECT_FALSE(clients.Submit(RequestOf(page + 1, 4))) << "no such page";
}

TEST(ClientTable, PagesTakeTurns) {
    ClientTable clients;
    const int one = *clients.Add();
    const int other = *clients.Add();
    clients.Submit(RequestOf(other, 1));
    clients.Submit(RequestOf(one, 2));
    clients.Submit(RequestOf(other, 3));
    EXPECT_EQ(std::get<DrawRequest>(clients.Next({})).serial, 3) << "it has waited longest";
    clients.Submit(RequestOf(other, 4));
    EXPECT_EQ(std::get<DrawRequest>(clients.Next({})).serial, 2);
    EXPECT_EQ(std::get<DrawRequest>(clients.Next({})).serial, 4);
}

TEST(ClientTable, TasksComeBeforeFrames) {
    ClientTable clients;
    const int page = *clients.Add();
    clients.Submit(RequestOf(page, 1));
    clients.Post([] {});
    EXPECT_TRUE(std::holds_alternative<ClientTable::Task>(clients.Next({})));
    EXPECT_TRUE(std::holds_alternative<DrawRequest>(clients.Next({})));
}

TEST(ClientTable, EndsWhenNoPageIsLeftOrItIsStopped) {
    ClientTable clients;
    EXPECT_TRUE(std::holds_alternative<std::monostate>(clients.Next(milliseconds(1))));
    const int page = *clients.Add();
    std::thread leaves([&] { clients.Remove(page); });
    EXPECT_TRUE(std::holds_alternative<std::monostate>(clients.Next(milliseconds(1))));
    leaves.join();
    clients.Stop();
    EXPECT_TRUE(std::holds_alternative<std::monostate>(clients.Next({})));
    EXPECT_FALSE(clients.Add());
}

TEST(ClientTable, SendsTheLastEventOfEachKind) {
    ClientTable clients;
    const int page = *clients.Add();
    clients.Send(page, "frame", "1");
    clients.Send(page, "panel", "2");
    clients.Send(page, "frame", "3");
    std::string part;
    EXPECT_TRUE(clients.TakeEvents(page, part));
    EXPECT_EQ(part, "event: panel\ndata: 2\n\nevent: frame\ndata: 3\n\n");
    clients.Stop();
    EXPECT_FALSE(clients.TakeEvents(page, part));
}

TEST(ClientTable, HasLimits) {
    ClientTable clients;
    for (std::size_t i = 0; i < kMostClients; ++i) EXPECT_TRUE(clients.Add());
    EXPECT_FALSE(clients.Add());
    for (int number = 1; number <= 5; ++number) clients.Keep(1, {number, nullptr, nullptr});
    EXPECT_FALSE(clients.FrameOf(1, 2));
    EXPECT_TRUE(clients.FrameOf(1, 3));
    EXPECT_TRUE(clients.FrameOf(1, 5));
    EXPECT_FALSE(clients.FrameOf(2, 5)) << "another page's";
}

TEST(DraftSize, GetsCoarserUntilADraftIsFastEnough) {
    constexpr double kPixels = 1920.0 * 1080;
    DraftSize fast;
    fast.Measured(1, kPixels, 10);
    EXPECT_EQ(fast.Next(kPixels), 1);
    DraftSize slow;
    slow.Measured(1, kPixels, 470);
    EXPECT_EQ(slow.Next(kPixels), 4) << "470 / 16 is less than 30, 470 / 9 is not";
    DraftSize slowest;
    slowest.Measured(1, kPixels, 1e9);
    EXPECT_EQ(slowest.Next(kPixels), kCoarsestDraft);
}

TEST(DraftSize, SettlesWhereDraftsAreWithinTheLimit) {
    constexpr double kPixels = 3840.0 * 2160;
    const auto took = [](int n) { return 8 + 900.0 / (n * n); };
    DraftSize size;
    int n = 0;
    for (int i = 0; i < 30; ++i) {
        n = size.Next(kPixels);
        size.Measured(n, kPixels, took(n));
    }
    EXPECT_LE(took(n), kDraftMilliseconds);
    EXPECT_GT(took(n - 2), kDraftMilliseconds) << "much coarser than needed: " << n;
}

TEST(DraftSize, DoesNotGetCoarserWhereThatDoesNotHelp) {
    DraftSize size;
    for (int i = 0; i < 30; ++i) size.Measured(size.Next(1e6), 1e6, 200);
    EXPECT_LT(size.Next(1e6), kCoarsestDraft);
}

TEST(DrawRequest, IsReadFromThePagesMessage) {
    const auto read = ReadDrawRequest(
        R"({"client":1,"serial":7,"moving":true,"layer":2,"texture":0,"values":{"style/distance":"80"}})");
    ASSERT_TRUE(read) << read.error().sentence;
    EXPECT_EQ(read->serial, 7);
    EXPECT_TRUE(read->moving);
    EXPECT_EQ(read->layer, 2);
    EXPECT_THAT(read->values, testing::ElementsAre(testing::Pair("style/distance", "80")));
}

TEST(DrawRequest, RefusesEverythingElse) {
    const std::string deep(100'000, '[');
    for (const std::string& text :
         {std::string(), std::string("{}"), std::string("[1]"), std::string("{\"client\":1"), deep,
          std::string(R"({"client":"1","serial":7,"moving":true,"layer":2,"texture":0,"values":{}})"),
          std::string(R"({"client":1,"serial":7,"moving":1,"layer":2,"texture":0,"values":{}})"),
          std::string(R"({"client":1,"serial":7,"moving":true,"layer":2,"texture":0,"values":{"a":1}})"),
          std::string(
              R"({"client":1,"serial":7,"moving":true,"layer":2,"texture":0,"values":{"a":{"b":{"c":{}}}}})")}) {
        const auto read = ReadDrawRequest(text);
        ASSERT_FALSE(read) << text;
        EXPECT_EQ(read.error().kind, ErrorKind::kUsage);
    }
}

TEST(Access, TokensAreLongAndDiffer) {
    const std::string token = NewToken();
    EXPECT_EQ(token.size(), 32U);
    EXPECT_EQ(token.find_first_not_of("0123456789abcdef"), std::string::npos);
    EXPECT_NE(token, NewToken());
}

TEST(LayerStore, KeepsTheImagesThatWereUsedLast) {
    const Folder folder;
    const auto file = folder / "one.png";
    ASSERT_TRUE(WritePicture(file, Filled8(3, 2, {255, 1, 2, 3}), {{0, 0, 3, 2}, 3, 2}));
    LayerStore layers;
    for (std::size_t i = 0; i < kMostLayers; ++i) ASSERT_TRUE(layers.AddFile(file));
    EXPECT_TRUE(layers.Find(1));
    ASSERT_TRUE(layers.AddFile(file));
    EXPECT_TRUE(layers.Find(1)) << "it was used after the second";
    EXPECT_FALSE(layers.Find(2));
}

TEST(LayerStore, KeepsNoMorePixelsThanItMay) {
    const Folder folder;
    const auto file = folder / "one.png";
    ASSERT_TRUE(WritePicture(file, Filled8(3, 2, {255, 1, 2, 3}), {{0, 0, 3, 2}, 3, 2}));
    LayerStore two(12);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(two.AddFile(file));
    EXPECT_FALSE(two.Find(1));
    EXPECT_TRUE(two.Find(2));
    EXPECT_TRUE(two.Find(3));
    LayerStore less(1);
    ASSERT_TRUE(less.AddFile(file));
    EXPECT_TRUE(less.Find(1)) << "the newest stays in any case";
}

TEST(LayerStore, RefusesAnImageByItsSizeBeforeItIsDecoded) {
    const Folder folder;
    const auto file = folder / "large.png";
    ASSERT_TRUE(WritePicture(file, Filled8(1, 1, {255, 1, 2, 3}), {{0, 0, 1, 1}, 1, 1}));
    std::ifstream stream(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    // The header's width and height become 7,000, with its checksum; the pixels stay those of one.
    const std::string header("IHDR\0\0\x1b\x58\0\0\x1b\x58", 12);
    bytes.replace(12, 12, header);
    unsigned crc = 0xffffffffU;
    for (std::size_t i = 12; i < 29; ++i) {
        crc ^= static_cast<unsigned char>(bytes[i]);
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) ? crc >> 1 ^ 0xedb88320U : crc >> 1;
    }
    crc = ~crc;
    for (int i = 0; i < 4; ++i) bytes[29 + static_cast<std::size_t>(i)] = static_cast<char>(crc >> (24 - 8 * i) & 255U);
    LayerStore layers;
    const auto added = layers.AddBytes("large.png", bytes);
    ASSERT_FALSE(added);
    EXPECT_THAT(added.error().sentence, HasSubstr("cannot preview 'large.png': it has 7000 x 7000 pixels"));
}

TEST(LayerStore, TheFullSizeStaysWhileDraftsChange) {
    const Folder folder;
    const auto file = folder / "one.png";
    ASSERT_TRUE(WritePicture(file, Filled8(8, 8, {255, 1, 2, 3}), {{0, 0, 8, 8}, 8, 8}));
    LayerStore layers;
    const auto layer = layers.AddFile(file);
    ASSERT_TRUE(layer);
    const World* full = *(*layer)->At(Depth::k8, 1);
    for (int n : {2, 3, 4}) EXPECT_EQ((*(*layer)->At(Depth::k8, n))->Width(), (8 + n - 1) / n);
    EXPECT_EQ(*(*layer)->At(Depth::k8, 1), full);
}

}  // namespace

}  // namespace umbrant::host
