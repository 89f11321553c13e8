// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The log of a session, and the books kept from it, which agree with what the host counts.

#include "host/accounting/event_log.h"
#include "host/accounting/ledger.h"
#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::Contains;
using ::testing::IsEmpty;

class Accounting : public SessionTest {
 protected:
    // The session writes to the log until it has ended.
    ~Accounting() override { session.reset(); }

    void StartLogged() {
        SessionOptions options;
        options.log = &log;
        Start(options);
    }
    void Draw() {
        const World layer = Picture(6, 4);
        FrameRequest request;
        request.layer = &layer;
        const auto frame = session->Render(request);
        static_cast<void>(bool(frame));
    }
    EventLog log;
};

TEST_F(Accounting, EveryCommandAndCallIsAnEvent) {
    StartLogged();
    Draw();
    const std::vector<Event> events = log.Events();
    int commands = 0;
    for (const Event& event : events) {
        commands += event.isCommand;
        EXPECT_GE(event.end, event.begin) << event.callee;
        if (!event.isCommand && event.callee != "PF Handle Suite.host_dispose_handle") {
            EXPECT_GT(event.command, 0u) << event.callee;
        }
    }
    EXPECT_EQ(commands, 4 + 3);  // set-up, and two pre-renders with one render
    const auto output = std::find_if(events.begin(), events.end(),
                                     [](const Event& event) { return event.callee == "smart-render.checkout_output"; });
    ASSERT_NE(output, events.end());
    EXPECT_NE(output->arguments.at(1).after, 0u);
    EXPECT_EQ(output->result, 0);
}

TEST_F(Accounting, TheBooksAgreeWithTheHostsCounts) {
    StartLogged();
    Draw();
    EXPECT_EQ(BalanceOf(log.Events()), session->Open()) << BalanceOf(log.Events()).Text();
    Set("flaw", "leak");
    Draw();
    EXPECT_EQ(BalanceOf(log.Events()), session->Open()) << BalanceOf(log.Events()).Text();
    ASSERT_TRUE(session->End());
    EXPECT_EQ(BalanceOf(log.Events()), session->Open());
}

TEST_F(Accounting, ALeakIsNamed) {
    StartLogged();
    Set("flaw", "leak");
    Draw();
    ASSERT_TRUE(session->End());
    std::vector<std::string> sentences;
    for (const LedgerRow& row : UnevenRows(log.Events())) sentences.push_back(row.sentence);
    EXPECT_THAT(sentences, Contains("handle #2 was acquired 1 time and released 0 times (PF_Cmd_SMART_RENDER)"));
    EXPECT_THAT(sentences, Contains("lock #1 was acquired 1 time and released 0 times (PF_Cmd_SMART_RENDER)"));
}

TEST_F(Accounting, AnEvenSessionHasEvenBooks) {
    StartLogged();
    Draw();
    ASSERT_TRUE(session->End());
    EXPECT_THAT(UnevenRows(log.Events()), IsEmpty());
}

TEST_F(Accounting, WithoutALogNothingIsWritten) {
    Start();
    Draw();
    EXPECT_EQ(log.Size(), 0u);
}

}  // namespace

}  // namespace umbrant::host
