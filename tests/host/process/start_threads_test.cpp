// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Reports of threads that the system refused.

#include "host/process/start_threads.h"

#include <gtest/gtest.h>

#include <new>

namespace umbrant::host {

namespace {

int reports = 0;

class ThreadShortageReport : public testing::Test {
 protected:
    ThreadShortageReport() { reports = 0; }
    ~ThreadShortageReport() override { ReportThreadShortage(nullptr); }
};

TEST_F(ThreadShortageReport, IsMadeOnce) {
    ReportThreadShortage([](const ThreadShortage& shortage) { reports += shortage.wanted - shortage.allowed; });
    NoteThreadShortage({5, 2});
    NoteThreadShortage({9, 1});
    EXPECT_EQ(reports, 3);
}

TEST_F(ThreadShortageReport, MayFail) {
    ReportThreadShortage([](const ThreadShortage&) {
        ++reports;
        throw std::bad_alloc();
    });
    NoteThreadShortage({2, 1});
    EXPECT_EQ(reports, 1);
}

}  // namespace

}  // namespace umbrant::host
