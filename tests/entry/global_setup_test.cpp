// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Global set-up and set-down against a driver that answers, one that does not, and a host that fails.

#include "entry/global_setup.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <thread>

#include "entry/global_data.h"
#include "gl/context.h"
#include "gl/thread_state.h"
#include "hostapi/custom_ui.h"
#include "tests/entry/global_setup_fixture.h"
#include "tests/support/capture_stdout.h"

namespace umbrant::effect {

namespace {

TEST_F(GlobalSetupTest, AnnouncesVersionAndFlags) {
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(host.outData.my_version, 0x99801u);
    EXPECT_EQ(host.outData.out_flags, 1 << 15 | 1 << 26);
    EXPECT_EQ(host.outData.out_flags2, 1 << 0 | 1 << 3 | 1 << 10 | 1 << 12 | 1 << 21 | 1 << 27);
    EXPECT_EQ(host.outData.out_flags, 0x04008000);
    EXPECT_EQ(host.outData.out_flags2, 0x08201409);
    EXPECT_EQ(host.outData.out_flags & PF_OutFlag_DEEP_COLOR_AWARE, 0) << "16 bits are not asked for";
    SetDownModule();
}

TEST_F(GlobalSetupTest, PremiereIsToldThatTheEffectIsObsolete) {
    host.inData.appl_id = kPremiere;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(host.outData.out_flags, 1 << 21) << "this flag alone";
    EXPECT_EQ(host.outData.out_flags2, 0x08201409);
    EXPECT_EQ(host.outData.my_version, 0x99801u);
    EXPECT_NE(host.outData.global_data, nullptr) << "the rest goes on as elsewhere";
    SetDownModule();
}

TEST_F(GlobalSetupTest, RecordsTheDriver) {
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    ASSERT_NE(host.outData.global_data, nullptr);
    EXPECT_STREQ(Record().gl_version, "3.3 Test");
    EXPECT_STREQ(Record().gl_vendor, "The Vendor");
    EXPECT_STREQ(Record().gl_renderer, "The Renderer");
    EXPECT_STREQ(Record().glsl_version, "3.30");
    EXPECT_EQ(fake::ContextNumber(Record().context), 1);
    EXPECT_EQ(Record().rendererRecorded, 0);
    EXPECT_EQ(host.calls,
              (Lines{"AcquireSuite PF Handle Suite 2", "host_new_handle " + std::to_string(sizeof(GlobalData)),
                     "host_lock_handle", "AcquireSuite Umbrant Host Suite 1", "host_unlock_handle",
                     "ReleaseSuite PF Handle Suite 2"}));
    EXPECT_EQ(fake::Calls(), (Lines{"CGLChoosePixelFormat(99, 12800, 0)", "CGLCreateContext(format 1, null)",
                                    "CGLRetainContext(context 1)", "CGLSetCurrentContext(context 1)",
                                    "glGetString(GL_VERSION)", "glGetString(GL_VENDOR)", "glGetString(GL_RENDERER)",
                                    "glGetString(GL_SHADING_LANGUAGE_VERSION)", "CGLSetCurrentContext(null)"}));
    EXPECT_EQ(fake::Cgl().liveContexts, 1) << "the probe lives until set-down";
    EXPECT_EQ(GetCurrentContext(), nullptr);
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, RestoresTheThreadsContext) {
    const CGLContextObj mine = CreateContext(nullptr, nullptr);
    SetCurrentContext(mine);
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(GetCurrentContext(), mine);
    EXPECT_NE(Record().context, mine);
    EXPECT_EQ(fake::Cgl().lastShare, nullptr) << "the probe shares with nobody";
    // Intended: set-down leaves no context current, whatever was current before.
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_EQ(GetCurrentContext(), nullptr);
    DeleteContext(mine);
    EXPECT_EQ(fake::Cgl().liveContexts, 0);
}

TEST_F(GlobalSetupTest, RestoresTheThreadsContextAlsoWithoutAProbe) {
    const CGLContextObj mine = CreateContext(nullptr, nullptr);
    SetCurrentContext(mine);
    fake::Cgl().createError = kCGLBadAlloc;
    fake::ClearCalls();
    CaptureStdout output;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(GetCurrentContext(), mine);
    EXPECT_EQ(fake::CallsTo("CGLSetCurrentContext"), (Lines{"CGLSetCurrentContext(context 1)"}));
    SetDownModule();
    DeleteContext(mine);
}

TEST_F(GlobalSetupTest, NoContextIsNoError) {
    const struct {
        const char* name;
        CGLError chooseError, createError;
        size_t messages;
    } rows[] = {
        {"no pixel format", kCGLBadAttribute, kCGLNoError, 2},
        {"no context", kCGLNoError, kCGLBadAlloc, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        fake::Cgl().chooseError = row.chooseError;
        fake::Cgl().createError = row.createError;
        fake::ClearCalls();
        CaptureStdout output;
        EXPECT_EQ(SetUpModule(), PF_Err_NONE);
        const std::string text = output.Text();
        EXPECT_EQ(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')), row.messages) << text;
        ASSERT_NE(host.outData.global_data, nullptr);
        EXPECT_EQ(Record().context, nullptr);
        for (const char* field :
             {Record().gl_version, Record().gl_vendor, Record().gl_renderer, Record().glsl_version}) {
            EXPECT_STREQ(field, "");
        }
        EXPECT_TRUE(fake::CallsTo("glGetString").empty());
        fake::ClearCalls();
        EXPECT_EQ(SetDownModule(), PF_Err_NONE);
        EXPECT_TRUE(fake::Calls().empty()) << "no context, so the thread's current one stays";
        ExpectBalanced();
    }
}

TEST_F(GlobalSetupTest, LongStringsAreCut) {
    const std::string fits(99, 'a'), cut(100, 'b'), longer(300, 'c');
    fake::Gl().strings = {
        {GL_VERSION, fits}, {GL_VENDOR, cut}, {GL_RENDERER, longer}, {GL_SHADING_LANGUAGE_VERSION, longer}};
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(Record().gl_version, fits);
    EXPECT_EQ(Record().gl_vendor, std::string(99, 'b'));
    EXPECT_EQ(Record().gl_renderer, std::string(99, 'c'));
    EXPECT_EQ(Record().glsl_version, std::string(99, 'c'));
    EXPECT_EQ(fake::ContextNumber(Record().context), 1) << "the field behind the strings";
    SetDownModule();
}

TEST_F(GlobalSetupTest, ADriverWithoutAnswersLeavesTheStringsEmpty) {
    fake::Gl().strings.clear();
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_STREQ(Record().gl_version, "");
    EXPECT_STREQ(Record().glsl_version, "");
    EXPECT_NE(Record().context, nullptr);
    SetDownModule();
}

void* (*lockOfTheHost)(PF_Handle) = nullptr;
void* LockWithLeftovers(PF_Handle handle) {
    void* memory = lockOfTheHost(handle);
    std::memset(memory, 0xAB, sizeof(GlobalData));
    return memory;
}

TEST_F(GlobalSetupTest, TheRecordIsClearedFirst) {
    lockOfTheHost = host.handleSuite.host_lock_handle;
    host.handleSuite.host_lock_handle = LockWithLeftovers;
    fake::Cgl().createError = kCGLBadAlloc;
    CaptureStdout output;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    const GlobalData clear{};
    EXPECT_EQ(std::memcmp(&Record(), &clear, sizeof(clear)), 0);
}

TEST_F(GlobalSetupTest, NoMemoryIsNoError) {
    host.failNewHandle = 1;
    const auto before = reinterpret_cast<PF_Handle>(0x99);
    host.outData.global_data = before;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(host.outData.global_data, before) << "left as it was";
    EXPECT_EQ(host.CountOf("host_lock_handle"), 0);
    EXPECT_TRUE(fake::Calls().empty());
    EXPECT_EQ(host.outData.out_flags, 0x04008000);
    ExpectBalanced();
}

// An unlocked handle's pointer need not be valid: here it leads to memory that is not the module's.
class UnlockableRecordTest : public GlobalSetupTest {
 protected:
    UnlockableRecordTest() : foreign_(sizeof(GlobalData) * 2, kForeign) {
        host.PointUnlockedHandlesTo(foreign_.data());
        host.inData.inter.add_param = [](PF_ProgPtr, PF_ParamIndex index, PF_ParamDefPtr def) {
            static_cast<void>(index);
            if (def->param_type == PF_Param_POPUP) popups.push_back(def->u.pd.u.namesptr);
            return PF_Err{};
        };
        host.inData.inter.register_ui = [](PF_ProgPtr, PF_CustomUIInfo*) { return PF_Err{}; };
        popups.clear();
    }
    ~UnlockableRecordTest() override {
        EXPECT_EQ(std::count(foreign_.begin(), foreign_.end(), kForeign), std::ssize(foreign_))
            << "written through the pointer of a handle that is not locked";
    }

    /// Set-up whose lock fails, on memory that holds what an earlier owner left: bytes that make a context, too.
    void SetUpWithoutLock() {
        host.failLock = 1;
        newHandleOfTheHost = host.handleSuite.host_new_handle;
        host.handleSuite.host_new_handle = [](A_HandleSize size) {
            const PF_Handle handle = newHandleOfTheHost(size);
            std::memset(TestHost::Current().BytesOf(handle), kForeign, size);
            return handle;
        };
        EXPECT_EQ(SetUpModule(), PF_Err_NONE);
        host.inData.global_data = host.outData.global_data;
    }

    static constexpr char kForeign = 0x2B;
    static inline PF_Handle (*newHandleOfTheHost)(A_HandleSize) = nullptr;
    static inline std::vector<std::string> popups;
    std::vector<char> foreign_;
};

TEST_F(UnlockableRecordTest, AHandleThatCannotBeLockedIsStoredUnwritten) {
    SetUpWithoutLock();
    ASSERT_NE(host.outData.global_data, nullptr);
    EXPECT_TRUE(fake::Calls().empty()) << "no probe without a record";
    EXPECT_EQ(host.CountOf("host_lock_handle"), 1);
    EXPECT_EQ(host.CountOf("host_unlock_handle"), 0) << "there is no lock to take back";
    EXPECT_EQ(host.CountOf("host_dispose_handle"), 0);
    const auto* bytes = static_cast<const char*>(host.BytesOf(host.outData.global_data));
    EXPECT_EQ(std::count(bytes, bytes + sizeof(GlobalData), kForeign), std::ssize(foreign_) / 2) << "not written";
    EXPECT_EQ(host.misuses, 0);
    EXPECT_EQ(host.suiteBalance.at({"PF Handle Suite", 2}), 0);
}

TEST_F(UnlockableRecordTest, ItsParametersNameNoDriver) {
    SetUpWithoutLock();
    EXPECT_EQ(Call(PF_Cmd_PARAMS_SETUP), PF_Err_NONE);
    ASSERT_GE(popups.size(), 4u);
    EXPECT_EQ(std::vector(popups.begin(), popups.begin() + 4), Lines(4, "NULL"));
}

TEST_F(UnlockableRecordTest, NoThreadMakesAContextForIt) {
    SetUpWithoutLock();
    std::thread([this] {
        InitThreadLocalRenderData(&host.inData, &host.outData);
        EXPECT_EQ(local_render_data, nullptr);
    }).join();
    EXPECT_TRUE(fake::Calls().empty());
}

TEST_F(UnlockableRecordTest, SetDownDeletesNoContextFromIt) {
    SetUpWithoutLock();
    EXPECT_EQ(SetDownModule(), PF_Err_NONE) << "the lock succeeds now";
    EXPECT_TRUE(fake::Calls().empty()) << "what the memory held is no context";
    EXPECT_EQ(host.CountOf("host_dispose_handle"), 1);
    EXPECT_EQ(host.inData.global_data, nullptr);
    ExpectBalanced();
}

// The host may hand out the address of an earlier set-up's handle again.
TEST_F(UnlockableRecordTest, AHandleOfAnEarlierSetUpIsForgotten) {
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    const PF_Handle first = host.outData.global_data;
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_FALSE(writtenRecords.Contains(first));

    // Without a set-down the note stays; it ends when a set-up that cannot write stores the same handle.
    static PF_Handle again;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    again = host.outData.global_data;
    EXPECT_TRUE(writtenRecords.Contains(again));
    const GlobalData left = *static_cast<GlobalData*>(host.BytesOf(again));
    host.handleSuite.host_new_handle = [](A_HandleSize) { return again; };
    host.RestartCounts();
    host.failLock = 1;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    EXPECT_EQ(host.outData.global_data, again);
    EXPECT_FALSE(writtenRecords.Contains(again));
    DeleteContext(left.context);
}

// Several instances of a host in one process set the module up side by side.
TEST_F(GlobalSetupTest, EverySetUpHasItsRecord) {
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    const PF_Handle first = host.outData.global_data;
    EXPECT_EQ(SetUpModule(), PF_Err_NONE);
    const PF_Handle second = host.outData.global_data;
    EXPECT_EQ(fake::Cgl().liveContexts, 2);
    for (const PF_Handle handle : {first, second}) {
        host.outData.global_data = handle;
        EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    }
    EXPECT_EQ(fake::Cgl().liveContexts, 0);
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, MissingHandleSuite) {
    host.Refuse("PF Handle Suite");
    EXPECT_EQ(SetUpModule(), 516);
    EXPECT_EQ(host.outData.my_version, 0x99801u) << "the flags come first";
    EXPECT_EQ(host.outData.out_flags, 0x04008000);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), 516);
    ExpectBalanced();
}

int contextsAtUnlock = -1;
void (*unlockOfTheHost)(PF_Handle) = nullptr;
void UnlockNotingContexts(PF_Handle handle) {
    contextsAtUnlock = fake::Cgl().liveContexts;
    unlockOfTheHost(handle);
}

TEST_F(GlobalSetupTest, SetDownInOrder) {
    SetUpModule();
    host.calls.clear();
    fake::ClearCalls();
    unlockOfTheHost = host.handleSuite.host_unlock_handle;
    host.handleSuite.host_unlock_handle = UnlockNotingContexts;
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_EQ(fake::Calls(), (Lines{"CGLSetCurrentContext(context 1)", "CGLReleaseContext(context 1)",
                                    "CGLDestroyContext(context 1)", "CGLSetCurrentContext(null)"}));
    EXPECT_EQ(host.calls, (Lines{"AcquireSuite PF Handle Suite 2", "host_lock_handle", "host_unlock_handle",
                                 "host_dispose_handle", "ReleaseSuite PF Handle Suite 2"}));
    EXPECT_EQ(contextsAtUnlock, 0) << "the context goes before the record";
    EXPECT_EQ(host.inData.global_data, nullptr);
    EXPECT_EQ(fake::Cgl().liveReferences, 0);
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, SetDownWithNothingToTakeDown) {
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), PF_Err_NONE);
    EXPECT_EQ(host.CountOf("host_lock_handle"), 0);
    EXPECT_TRUE(fake::Calls().empty());
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, SetDownTwice) {
    SetUpModule();
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_EQ(Call(PF_Cmd_GLOBAL_SETDOWN), PF_Err_NONE);
    EXPECT_EQ(host.CountOf("host_dispose_handle"), 1);
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, SetDownOfAHandleThatCannotBeLocked) {
    SetUpModule();
    host.failLock = 2;
    fake::ClearCalls();
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    EXPECT_EQ(host.inData.global_data, host.outData.global_data) << "the handle is left as it is";
    EXPECT_EQ(host.CountOf("host_unlock_handle"), 1) << "that of the set-up";
    EXPECT_EQ(host.CountOf("host_dispose_handle"), 0);
    EXPECT_TRUE(fake::Calls().empty());
    EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    ExpectBalanced();
}

TEST_F(GlobalSetupTest, ManyTimesInOneProcess) {
    for (int i = 0; i < 50; ++i) {
        EXPECT_EQ(SetUpModule(), PF_Err_NONE);
        EXPECT_EQ(SetDownModule(), PF_Err_NONE);
    }
    EXPECT_EQ(fake::Cgl().contextsMade, 50);
    EXPECT_EQ(fake::Cgl().liveContexts, 0);
    ExpectBalanced();
}

// Intended: nobody ever assigns it.
TEST_F(GlobalSetupTest, ThePluginIdStaysZero) {
    SetUpModule();
    EXPECT_EQ(my_id, 0);
    SetDownModule();
    EXPECT_EQ(my_id, 0);
}

static_assert(offsetof(GlobalData, gl_version) == 0 && offsetof(GlobalData, gl_vendor) == 100 &&
              offsetof(GlobalData, gl_renderer) == 200 && offsetof(GlobalData, glsl_version) == 300 &&
              offsetof(GlobalData, context) == 400);

}  // namespace

}  // namespace umbrant::effect
