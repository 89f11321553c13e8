// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Waiting for what happens in folders, and how files are at a moment. Where the kernel reports an event, waiting has no
// end without it: these tests would not end.

#include "host/cli/watch/folder_events.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "host/cli/watch/watched_files.h"
#include "tests/support/folder.h"

namespace umbrant::host {

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr FolderEvents::Seconds kShort{0.01};

TEST(FolderEvents, EachKindOfChangeEndsTheWait) {
    const Folder folder;
    FolderEvents events;
    events.Follow({folder.Path()});
    ASSERT_FALSE(events.Polls()) << "set TMPDIR to a folder of this machine that the kernel watches";
    WriteBytes(folder / "a", "one");
    events.Wait(kShort);
    WriteBytes(folder / "a", "two");
    events.Wait(kShort);
    fs::rename(folder / "a", folder / "b");
    events.Wait(kShort);
    fs::remove(folder / "b");
    events.Wait(kShort);
    std::thread later([&] { WriteBytes(folder / "c", "three"); });
    events.Wait(kShort);
    later.join();
}

TEST(FolderEvents, AFolderThatIsReplacedIsFollowed) {
    const Folder folder;
    fs::create_directory(folder / "in");
    FolderEvents events;
    events.Follow({folder / "in"});
    ASSERT_FALSE(events.Polls()) << "set TMPDIR to a folder of this machine that the kernel watches";
    fs::rename(folder / "in", folder / "old");
    events.Wait(kShort);
    EXPECT_TRUE(events.Polls()) << "nobody reports when it is there again";
    events.Wait(kShort);
    fs::create_directory(folder / "in");
    events.Wait(kShort);
    EXPECT_FALSE(events.Polls());
    WriteBytes(folder / "in" / "a", "one");
    events.Wait(kShort);
    fs::remove_all(folder / "in");
    while (!events.Polls()) events.Wait(kShort);
}

TEST(FolderEvents, WithoutTheKernelTheWaitEndsAfterTheInterval) {
    const Folder folder;
    FolderEvents events(true);
    events.Follow({folder.Path()});
    EXPECT_TRUE(events.Polls());
    events.Wait(kShort);
    events.Follow({});
    EXPECT_FALSE(events.Polls());
}

TEST(WatchedFiles, OnlyTheirOwnNamesCount) {
    const Folder folder;
    const auto path = [&](const std::string& name) { return (folder / name).string(); };
    for (const char* name : {"still.png", "in.1.png", "in.2.png"}) WriteBytes(folder / name, "x");
    WatchedFiles watched{{path("still.png"), path("none.json")}, {}};
    watched.patterns.push_back(**FramePattern::Find(path("in.@.png")));
    const FileStamps before = watched.Scan();
    EXPECT_EQ(before.size(), 3u);
    EXPECT_THAT(watched.Folders(), ElementsAre(folder.Path()));

    for (const char* name : {"shadow.png", "in.1.exr", "in.0001.png", ".umbrant-7.part"}) {
        WriteBytes(folder / name, "ours");
    }
    EXPECT_EQ(watched.Scan(), before);

    WriteBytes(folder / "new", "y");
    fs::rename(folder / "new", folder / "in.2.png");
    WriteBytes(folder / "in.7.png", "x");
    fs::remove(folder / "still.png");
    WriteBytes(folder / "none.json", "{}");
    const FileStamps now = watched.Scan();
    EXPECT_THAT(ChangedFiles(before, now), UnorderedElementsAre(path("in.2.png"), path("in.7.png"), path("none.json")));
    EXPECT_THAT(GoneFiles(before, now), ElementsAre(path("still.png")));
}

TEST(WatchedFiles, LinksAreFollowed) {
    const Folder folder;
    fs::create_directory(folder / "real");
    WriteBytes(folder / "real" / "still.png", "x");
    fs::create_symlink(folder / "real" / "still.png", folder / "link.png");
    const WatchedFiles watched{{(folder / "link.png").string()}, {}};
    EXPECT_THAT(watched.Folders(), ElementsAre(folder.Path(), fs::canonical(folder / "real")));
    const FileStamps before = watched.Scan();
    WriteBytes(folder / "real" / "still.png", "longer");
    EXPECT_THAT(ChangedFiles(before, watched.Scan()), ElementsAre((folder / "link.png").string()));
    fs::remove(folder / "real" / "still.png");
    EXPECT_THAT(watched.Scan(), IsEmpty());
}

}  // namespace

}  // namespace umbrant::host
