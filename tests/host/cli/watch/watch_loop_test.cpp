// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// When the watch draws, with files and time that a script plays.

#include "host/cli/watch/watch_loop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <set>

namespace umbrant::host {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileStamp Stamp(std::uint64_t size, std::uint64_t node = 1) {
    return {0, 0, size, 1, node};
}

/// Files change when the loop waits or pauses, as the script says; after its end the loop ends.
class PlayedWorld : public WatchedWorld {
 public:
    using Change = std::function<void(PlayedWorld&)>;

    FileStamps Scan() override { return files; }
    bool WaitForEvent() override {
        log.push_back("wait");
        return Play(events);
    }
    bool Pause(Seconds time) override {
        passed += time;
        log.push_back(time == kRest ? "rest" : "patience");
        if (pauses.empty()) return true;
        return Play(pauses);
    }
    bool IsWhole(const std::string& path) override { return !torn.contains(path); }
    void Gone(const std::vector<std::string>& paths) override { log.push_back("gone " + paths.front()); }
    void Draw(const std::vector<std::string>& changed) override {
        std::string text = "draw";
        for (const std::string& path : changed) text += " " + path;
        log.push_back(text);
        if (whileDrawing) std::exchange(whileDrawing, {})(*this);
    }

    FileStamps files{{"a", Stamp(1)}, {"b", Stamp(1)}};
    std::set<std::string> torn;
    std::deque<Change> events;  ///< one for each wait for an event
    std::deque<Change> pauses;  ///< one for each pause; nothing happens in later ones
    Change whileDrawing;
    Seconds passed{0};
    std::vector<std::string> log;

 private:
    bool Play(std::deque<Change>& script) {
        if (script.empty()) return false;
        const Change change = script.front();
        script.pop_front();
        change(*this);
        return true;
    }
};

void Nothing(PlayedWorld&) {}

PlayedWorld::Change Set(const std::string& path, const FileStamp& stamp) {
    return [=](PlayedWorld& world) { world.files[path] = stamp; };
}

PlayedWorld::Change Remove(const std::string& path) {
    return [=](PlayedWorld& world) { world.files.erase(path); };
}

std::vector<std::string> Played(PlayedWorld& world) {
    RunWatchLoop(world, world.files);
    return world.log;
}

TEST(WatchLoop, AnEventOfAnotherFileChangesNothing) {
    PlayedWorld world;
    world.events = {Nothing, Nothing};
    EXPECT_THAT(Played(world), ElementsAre("wait", "wait", "wait"));
}

TEST(WatchLoop, AChangedFileIsDrawnWhenItIsAtRest) {
    PlayedWorld world;
    world.events = {Set("a", Stamp(2))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "draw a", "wait"));
}

TEST(WatchLoop, AFileThatGrowsIsWaitedFor) {
    PlayedWorld world;
    world.events = {Set("a", Stamp(2))};
    world.pauses = {Set("a", Stamp(3)), Set("a", Stamp(4))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "rest", "rest", "draw a", "wait"));
}

TEST(WatchLoop, AFileThatIsNotWholeIsWaitedFor) {
    PlayedWorld world;
    world.events = {[](PlayedWorld& w) {
        w.files["a"] = Stamp(2);
        w.torn = {"a"};
    }};
    world.pauses = {Nothing, Nothing, [](PlayedWorld& w) { w.torn.clear(); }};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "patience", "patience", "draw a", "wait"));
}

TEST(WatchLoop, AFileThatIsNeverWholeIsDrawnOnce) {
    PlayedWorld world;
    world.events = {[](PlayedWorld& w) {
                        w.files["a"] = Stamp(2);
                        w.torn = {"a"};
                    },
                    Nothing};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "patience", "patience", "patience", "patience", "patience",
                                           "draw a", "wait", "wait"))
        << "the render reports it, and the next change is waited for";
}

TEST(WatchLoop, AFileThatGrowsAfterItWasAtRest) {
    PlayedWorld world;
    world.events = {[](PlayedWorld& w) {
        w.files["a"] = Stamp(2);
        w.torn = {"a"};
    }};
    world.pauses = {Nothing, [](PlayedWorld& w) {
                        w.files["a"] = Stamp(3);
                        w.torn.clear();
                    }};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "patience", "rest", "draw a", "wait"));
}

TEST(WatchLoop, AtomicReplacementIsOneChange) {
    PlayedWorld world;
    world.events = {Set("a", Stamp(1, 2))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "draw a", "wait")) << "same size and time, another file";
}

TEST(WatchLoop, AFileThatIsGoneForAMomentIsAChange) {
    PlayedWorld world;
    world.events = {Remove("a")};
    world.pauses = {Set("a", Stamp(1, 2))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "rest", "draw a", "wait"));
}

TEST(WatchLoop, AFileThatIsGoneIsWaitedFor) {
    PlayedWorld world;
    world.events = {Remove("a"), Nothing, Set("a", Stamp(1))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "gone a", "wait", "wait", "rest", "draw a", "wait"))
        << "the same file comes back";
}

TEST(WatchLoop, AChangeDuringTheDrawingIsDrawnAfterIt) {
    PlayedWorld world;
    world.events = {Set("a", Stamp(2))};
    world.whileDrawing = Set("b", Stamp(7));
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "draw a", "rest", "draw b", "wait"));
    PlayedWorld first;
    RunWatchLoop(first, {{"a", Stamp(1)}, {"b", Stamp(0)}});
    EXPECT_THAT(first.log, ElementsAre("rest", "draw b", "wait")) << "also during the first";
}

TEST(WatchLoop, ChangesOfOneMomentAreOneDrawing) {
    PlayedWorld world;
    world.events = {Set("a", Stamp(2))};
    world.pauses = {Set("b", Stamp(2)), Set("c", Stamp(1))};
    EXPECT_THAT(Played(world), ElementsAre("wait", "rest", "rest", "rest", "draw a b c", "wait"));
}

TEST(WatchLoop, TheEndOfAPauseMayBeTheEnd) {
    class Ended : public PlayedWorld {
     public:
        bool Pause(Seconds) override { return false; }
    } world;
    world.events = {Set("a", Stamp(2))};
    EXPECT_THAT(Played(world), ElementsAre("wait"));
}

}  // namespace

}  // namespace umbrant::host
