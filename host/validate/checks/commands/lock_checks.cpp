// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 8, locks: while one command waits in a callback of the host, another command must come through, from another
// thread and from inside of that callback.

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/commands/followed_calls.h"
#include "host/validate/checks/panel_events.h"
#include "host/validate/runner/processes.h"
#include "host/validate/runner/progress_watch.h"

namespace umbrant::host {

namespace {

/// A command as a host sends it.
struct Command {
    const char* name;
    PF_Cmd command;
    std::function<void(EffectSession&, const World&)> send;
};

void ChangeRows(EffectSession& session) {
    for (const int index : SettableRows(session.Params())) {
        // Pressing a button may open a page in a browser.
        if (KindOf(session.Params().Row(index).def) == ParamKind::kButton) continue;
        static_cast<void>(bool(session.UserChangedParam(index)));
    }
}

void DrawRows(EffectSession& session) {
    for (const int row : SelfDrawnRows(session)) {
        UnseenCanvas canvas;
        PF_EventExtra event = canvas.Event(PF_Event_DRAW, row, {100, 0, 300, 120});
        static_cast<void>(bool(session.SendEvent(&event)));
    }
}

const Command kAbout{"about", PF_Cmd_ABOUT,
                     [](EffectSession& session, const World&) { static_cast<void>(bool(session.About())); }};
const Command kFlags{"a query of dynamic flags", PF_Cmd_QUERY_DYNAMIC_FLAGS, [](EffectSession& session, const World&) {
                         session.Send(PF_Cmd_QUERY_DYNAMIC_FLAGS, nullptr, nullptr, nullptr);
                     }};
const Command kSetUp{"parameter set-up", PF_Cmd_PARAMS_SETUP, [](EffectSession& session, const World&) {
                         static_cast<void>(bool(session.End()));
                         static_cast<void>(bool(session.SetUp()));
                     }};
const Command kUpdate{"an update of the panel", PF_Cmd_UPDATE_PARAMS_UI,
                      [](EffectSession& session, const World&) { static_cast<void>(bool(session.UpdateParamsUI())); }};
const Command kChange{"a changed parameter", PF_Cmd_USER_CHANGED_PARAM,
                      [](EffectSession& session, const World&) { ChangeRows(session); }};
const Command kDraw{"a draw event", PF_Cmd_EVENT, [](EffectSession& session, const World&) { DrawRows(session); }};
const Command kPreRender{"a pre-render", PF_Cmd_SMART_PRE_RENDER, [](EffectSession& session, const World& layer) {
                             static_cast<void>(bool(session.PreRender(RequestOf(layer))));
                         }};
const Command kRender{"a render", PF_Cmd_SMART_RENDER, [](EffectSession& session, const World& layer) {
                          static_cast<void>(bool(session.Render(RequestOf(layer))));
                      }};

/// What two commands meet in. Threads that do not come back keep it, so nothing of it is torn down beneath them.
struct Meeting {
    Meeting(CheckRun& run, const Command& waiting)
        : fixture(run, Options()), layer(TestPicture(24, 24, Depth::k8)), outer(waiting) {
        fixture.Cheapen();
    }
    SessionOptions Options() {
        SessionOptions options;
        options.fault = [this](std::string_view call) {
            callback.Call(call);
            return PF_Err_NONE;
        };
        options.beforeCommand = [this](CommandArguments& sent) { callback.Before(sent.command); };
        options.afterCommand = [this](const CommandArguments& sent, PF_Err) { callback.After(sent.command); };
        return options;
    }
    /// Sends the command that is followed, on the calling thread.
    void SendOuter() {
        callback.Follow(outer.command);
        outer.send(fixture.Session(), layer);
    }

    FollowedCalls callback;
    CheckFixture fixture;
    World layer;
    Command outer;
};

/// A thread that sends a command.
class Sender {
 public:
    explicit Sender(const std::function<void()>& send) : done_(std::make_shared<std::atomic<bool>>(false)) {
        thread_ = std::thread([send, done = done_] {
            send();
            *done = true;
        });
    }
    ~Sender() { *done_ ? thread_.join() : thread_.detach(); }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    bool IsDone() const { return *done_; }

 private:
    std::shared_ptr<std::atomic<bool>> done_;
    std::thread thread_;
};

/// Keeps a meeting for good whose threads did not come back, and ends the run.
[[noreturn]] void Abandon(CheckRun& run, const std::shared_ptr<Meeting>& meeting, WaitEnd end,
                          const std::string& text) {
    static std::vector<std::shared_ptr<Meeting>> abandoned;
    abandoned.push_back(meeting);
    if (end == WaitEnd::kLate) run.Skip(NotMeasured(text + ", or is still running"));
    run.FailAndEnd(text);
}

/// The first call of each kind that the command makes, by its number.
std::vector<std::size_t> CallsOf(Meeting& meeting) {
    // What an effect does once only, it does the first time.
    meeting.SendOuter();
    meeting.SendOuter();
    const std::vector<std::string> calls = meeting.callback.Calls();
    std::vector<std::size_t> first;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        const auto here = calls.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::find(calls.begin(), here, *here) == here) first.push_back(i + 1);
    }
    return first;
}

/// While the outer command waits in a callback for the host, the host sends another one on another thread.
void SendBeside(CheckRun& run, const std::shared_ptr<Meeting>& meeting, const Command& inner) {
    const int patience = run.Options().timeoutMilliseconds / 2;
    for (const std::size_t number : CallsOf(*meeting)) {
        meeting->callback.HoldCall(number);
        const Sender waiting([meeting] { meeting->SendOuter(); });
        const auto isThere = [&] { return meeting->callback.Waits() || waiting.IsDone(); };
        if (const WaitEnd end = WaitUnlessStuck(isThere, patience); end != WaitEnd::kDone) {
            Abandon(run, meeting, end, fmt::format("{} does not end", meeting->outer.name));
        }
        const bool met = meeting->callback.Waits();
        WaitEnd end = WaitEnd::kDone;
        if (met) {
            const Sender sent([meeting, inner] { inner.send(meeting->fixture.Session(), meeting->layer); });
            end = WaitUnlessStuck([&] { return sent.IsDone(); }, patience);
            meeting->callback.Release();
            const auto areDone = [&] { return sent.IsDone() && waiting.IsDone(); };
            if (const WaitEnd after = WaitUnlessStuck(areDone, patience); after != WaitEnd::kDone) {
                Abandon(run, meeting, after,
                        fmt::format("{} on one thread and {} on another wait for each other", inner.name,
                                    meeting->outer.name));
            }
        }
        meeting->callback.Release();
        run.Count("pairs of commands");
        if (end == WaitEnd::kDone) continue;
        const std::string text = fmt::format(
            "{} on one thread waits for {} on another, which waits for the host in {}: a lock is held while the host "
            "is called",
            inner.name, meeting->outer.name, meeting->callback.Calls().at(number - 1));
        if (end == WaitEnd::kLate) run.Skip(NotMeasured(text));
        run.Fail(text);
        return;
    }
}

/// The host sends a command from a callback of another one.
void SendInside(CheckRun& run, const std::shared_ptr<Meeting>& meeting, const Command& inner) {
    const bool draws = meeting->outer.command == PF_Cmd_SMART_RENDER;
    std::optional<Frame> usual;
    if (draws) usual = meeting->fixture.Draw(RequestOf(meeting->layer), "a frame");
    meeting->callback.SendFromInside(
        [meeting = meeting.get(), inner] { inner.send(meeting->fixture.Session(), meeting->layer); });
    auto interrupted = std::make_shared<std::optional<Frame>>();
    const Sender sender([meeting, interrupted, draws] {
        if (!draws) return meeting->SendOuter();
        meeting->callback.Follow(meeting->outer.command);
        auto frame = meeting->fixture.Session().Render(RequestOf(meeting->layer));
        if (frame) *interrupted = std::move(*frame);
    });
    const WaitEnd end = WaitUnlessStuck([&] { return sender.IsDone(); }, run.Options().timeoutMilliseconds / 2);
    if (end != WaitEnd::kDone) {
        Abandon(run, meeting, end,
                fmt::format("{} from a callback of {} waits for it: a lock is held while the host is called",
                            inner.name, meeting->outer.name));
    }
    if (usual && (!*interrupted || !SamePixels(usual->output, (*interrupted)->output))) {
        run.Fail(fmt::format("{} from a callback of {} changes the frame", inner.name, meeting->outer.name));
    }
}

/// Two commands that a host may have under way at once.
struct Pair {
    Command outer, inner;
    bool beside, inside;
};

std::vector<Pair> PairsOf() {
    std::vector<Pair> pairs;
    for (const Command& outer : {kRender, kPreRender}) {
        for (const Command& inner : {kAbout, kFlags, kUpdate, kPreRender}) pairs.push_back({outer, inner, true, true});
        // A render inside of another command is asked of no effect; nor is anything of the panel but an update.
        for (const Command& inner : {kChange, kDraw, kRender}) pairs.push_back({outer, inner, true, false});
    }
    // Commands of the panel come one after the other, on one thread, while others draw.
    for (const Command& outer : {kUpdate, kChange, kDraw}) {
        for (const Command& inner : {kAbout, kFlags}) pairs.push_back({outer, inner, false, true});
        pairs.push_back({outer, kPreRender, true, true});
        pairs.push_back({outer, kRender, true, false});
    }
    // Before its parameters are known an effect can be asked for little.
    pairs.push_back({kSetUp, kAbout, true, true});
    return pairs;
}

void HoldsNoLocks(CheckRun& run) {
    std::vector<SubCheck> subChecks;
    for (const Pair& pair : PairsOf()) {
        subChecks.push_back({fmt::format("{} during {}", pair.inner.name, pair.outer.name), [pair](CheckRun& part) {
                                 const auto meeting = std::make_shared<Meeting>(part, pair.outer);
                                 if (pair.beside) SendBeside(part, meeting, pair.inner);
                                 if (pair.inside) SendInside(part, meeting, pair.inner);
                                 meeting->callback.SendFromInside({});
                             }});
    }
    RunSubChecks(run, subChecks);
}

}  // namespace

std::vector<Check> LockChecks() {
    return {{"8.5", "no lock is held while the host is called", HoldsNoLocks, Needs::kNothing, 4}};
}

}  // namespace umbrant::host
