// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 2: what the effect says about itself and its parameters, and a first frame.

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>

#include "host/session/error_names.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

constexpr std::size_t kNameField = sizeof(PF_ParamDef::name_do_not_use_directly);

/// The flags of one set-up.
struct Flags {
    A_u_long version = 0;
    PF_OutFlags first = 0;
    PF_OutFlags2 second = 0;
    bool operator==(const Flags&) const = default;
};

/// What two set-ups of one loaded module announce.
std::pair<Flags, Flags> SetUpTwice(CheckRun& run) {
    Flags flags;
    SessionOptions options;
    options.afterCommand = [&](const CommandArguments& sent, PF_Err) {
        if (sent.command == PF_Cmd_GLOBAL_SETUP) {
            flags = {sent.out->my_version, sent.out->out_flags, sent.out->out_flags2};
        }
    };
    CheckFixture fixture(run, options);
    const Flags first = flags;
    if (const auto ended = fixture.Session().End(); !ended) run.Fail(ended.error().sentence);
    if (const auto again = fixture.Session().SetUp(); !again) run.Fail(again.error().sentence);
    return {first, flags};
}

void AnnouncesItself(CheckRun& run) {
    const auto [flags, again] = SetUpTwice(run);
    if (flags.version == 0) run.Fail("global set-up leaves the version at 0");
    if ((flags.second & PF_OutFlag2_FLOAT_COLOR_AWARE) && !(flags.second & PF_OutFlag2_SUPPORTS_SMART_RENDER)) {
        run.Fail("float colours are announced without smart rendering, which every host needs for them");
    }
    if ((flags.second & PF_OutFlag2_SUPPORTS_GPU_RENDER_F32) && !(flags.second & PF_OutFlag2_SUPPORTS_SMART_RENDER)) {
        run.Fail("rendering on the host's GPU is announced without smart rendering");
    }
    if (flags.first & PF_OutFlag_I_AM_OBSOLETE) run.Warn("the effect is marked as obsolete, so no menu shows it");
    if (!(again == flags)) {
        run.Fail("a second set-up announces another version or other flags than the first");
    }
}

/// What is wrong with the limits of a number.
void CheckNumber(CheckRun& run, const ParamRow& row, const NumberRange& range) {
    const auto& [low, high, sliderLow, sliderHigh, normal] = range;
    const std::string name = RowName(row);
    if (low > high) run.Fail(fmt::format("{}: the valid range is empty, {} to {}", name, low, high));
    if (sliderLow > sliderHigh) run.Fail(fmt::format("{}: the slider's range is empty", name));
    if (normal < low || normal > high) {
        run.Fail(fmt::format("{}: the default {} is outside of the valid range {} to {}", name, normal, low, high));
    }
    if (sliderLow < low || sliderHigh > high) {
        run.Fail(fmt::format("{}: the slider reaches from {} to {}, beyond the valid range {} to {}", name, sliderLow,
                             sliderHigh, low, high));
    }
}

void CheckPopup(CheckRun& run, const ParamRow& row) {
    const PF_PopupDef& popup = row.def.u.pd;
    const std::string name = RowName(row);
    if (popup.num_choices < 1) run.Fail(fmt::format("{}: the popup has no items", name));
    if (static_cast<int>(row.items.size()) != popup.num_choices) {
        run.Fail(fmt::format("{}: the popup has {} items but declares {}", name, row.items.size(), popup.num_choices));
    }
    if (popup.dephault < 1 || popup.dephault > popup.num_choices) {
        run.Fail(fmt::format("{}: the default item {} is not one of {}", name, popup.dephault, popup.num_choices));
    }
}

void CheckRow(CheckRun& run, const ParamRow& row) {
    const char* name = row.def.name_do_not_use_directly;
    if (!std::memchr(name, '\0', kNameField)) {
        run.Fail(fmt::format("row #{}: the name has no end within its {} bytes", row.index, kNameField));
    }
    if (const auto range = SliderRange(row.def)) CheckNumber(run, row, *range);
    if (KindOf(row.def) == ParamKind::kPopup) CheckPopup(run, row);
}

void DeclaresSoundly(CheckRun& run) {
    struct Declared {
        PF_ParamIndex index;
        PF_ParamDef def;
    };
    std::vector<std::string> names;
    CheckFixture fixture(run);
    std::map<A_long, int> ids;
    int adds = 0;
    for (const Event& event : fixture.Log().Events()) adds += event.callee == "interact.add_param" && !event.Failed();
    const ParamSet& params = fixture.Session().Params();
    // The session refuses a wrong count and open groups; see EffectSession::SetUp.
    if (adds + 1 != params.Count()) run.Fail(fmt::format("{} rows were added, {} are known", adds, params.Count() - 1));
    for (const ParamRow& row : params.Rows()) {
        if (row.index == 0) continue;
        CheckRow(run, row);
        const auto [known, fresh] = ids.emplace(row.def.uu.id, row.index);
        // Without an id of its own a row is stored under its index; hosts number rows that say 0.
        if (row.def.uu.id == 0 || fresh) continue;
        run.Fail(fmt::format("rows #{} and #{} are stored under one id, {}", known->second, row.index, row.def.uu.id));
    }
    run.Count("parameters", params.Count());
}

constexpr char kUntouched = 0x5A;

/// About with a message field full of a pattern, and what follows it.
struct AboutAnswer {
    PF_Err error = PF_Err_NONE;
    std::string message;
    bool ended = false;
    bool overran = false;
};

AboutAnswer AskAbout(CheckRun& run, A_AppID host, bool pattern) {
    AboutAnswer answer;
    PF_OutData before{};
    SessionOptions options;
    options.appId = host;
    options.beforeCommand = [&](CommandArguments& sent) {
        if (sent.command != PF_Cmd_ABOUT) return;
        if (pattern) std::memset(sent.out->return_msg, kUntouched, sizeof(sent.out->return_msg));
        before = *sent.out;
    };
    options.afterCommand = [&](const CommandArguments& sent, PF_Err error) {
        if (sent.command != PF_Cmd_ABOUT) return;
        answer.error = error;
        const char* text = sent.out->return_msg;
        const char* end = static_cast<const char*>(std::memchr(text, '\0', sizeof(sent.out->return_msg)));
        answer.ended = end != nullptr;
        answer.message.assign(text, end ? end : text + sizeof(sent.out->return_msg));
        answer.overran = sent.out->start_sampL != before.start_sampL || sent.out->dur_sampL != before.dur_sampL ||
                         !SameBytes(sent.out->dest_snd, before.dest_snd);
    };
    CheckFixture fixture(run, options);
    fixture.Session().Send(PF_Cmd_ABOUT, nullptr, nullptr, nullptr);
    fixture.NoteMisbehaviour("about");
    return answer;
}

void TellsAboutItself(CheckRun& run) {
    // Over zeroes first, as hosts send it; then over a pattern, which shows a text without an end.
    const AboutAnswer plain = AskAbout(run, kAppID_AfterEffects, false);
    if (plain.error) run.Fail(fmt::format("about returned {} ({})", plain.error, ErrorName(plain.error)));
    if (plain.message.empty()) run.Fail("about leaves no text");
    const AboutAnswer patterned = AskAbout(run, kAppID_AfterEffects, true);
    if (plain.overran || patterned.overran) run.Fail("about writes beyond the message's 256 bytes");
    if (!plain.ended || (!patterned.message.empty() && !patterned.ended)) {
        run.Fail("the about text has no end within the message's 256 bytes");
    }
    if (patterned.ended && patterned.message != plain.message) {
        run.Fail(fmt::format("the about text changes from '{}' to '{}'", plain.message, patterned.message));
    }
}

void StandsOtherHosts(CheckRun& run) {
    std::vector<SubCheck> subChecks;
    subChecks.push_back({"in Premiere Pro",
                         [](CheckRun& part) {
                             SessionOptions options;
                             options.appId = kAppID_Premiere;
                             CheckFixture fixture(part, options);
                             fixture.TouchPanel();
                             fixture.EndBalanced("in Premiere Pro");
                         },
                         {}});
    subChecks.push_back({"in an application of another name",
                         [](CheckRun& part) {
                             SessionOptions options;
                             options.appId = 0x41424344;
                             CheckFixture fixture(part, options);
                             fixture.TouchPanel();
                             fixture.EndBalanced("in an application of another name");
                         },
                         {}});
    subChecks.push_back({"in a host of interface 13.0",
                         [](CheckRun& part) {
                             SessionOptions options;
                             options.apiMinor = 0;
                             CheckFixture fixture(part, options);
                             fixture.TouchPanel();
                             const World layer = TestPicture(16, 16, Depth::k8);
                             FrameRequest request;
                             request.layer = &layer;
                             fixture.Cheapen();
                             fixture.Draw(request, "in a host of interface 13.0");
                             fixture.EndBalanced("in a host of interface 13.0");
                         },
                         {}});
    RunSubChecks(run, subChecks);
}

void IgnoresUnknownCommands(CheckRun& run) {
    World world;
    PF_OutData before{}, after{};
    SessionOptions options;
    options.beforeCommand = [&](CommandArguments& sent) { before = *sent.out; };
    options.afterCommand = [&](const CommandArguments& sent, PF_Err) { after = *sent.out; };
    CheckFixture fixture(run, options);
    world = TestPicture(16, 16, Depth::k8);
    const std::uint64_t pixels = DigestOf(world);
    // Commands that no effect of today's hosts gets, or that hosts send only to who announces more.
    std::vector<PF_Cmd> commands{-1, PF_Cmd_UNUSED_0, std::numeric_limits<PF_Cmd>::max(),
                                 std::numeric_limits<PF_Cmd>::min()};
    for (PF_Cmd command = PF_Cmd_NUM_CMDS; command <= 255; ++command) commands.push_back(command);
    for (const PF_Cmd command : {PF_Cmd_RESERVED1, PF_Cmd_RESERVED2, PF_Cmd_RESERVED3, PF_Cmd_RESERVED4}) {
        commands.push_back(command);
    }
    // The older way to render is left to effects that do not render smartly.
    if (fixture.Session().OutFlags2() & PF_OutFlag2_SUPPORTS_SMART_RENDER) {
        commands.insert(commands.end(), {PF_Cmd_FRAME_SETUP, PF_Cmd_RENDER, PF_Cmd_FRAME_SETDOWN});
    }
    for (const PF_Cmd command : commands) {
        const CommandRecord record = fixture.Session().Send(command, nullptr, &world.Def(), nullptr);
        const std::string name = fmt::format("command {} ({})", command, CommandName(command));
        if (record.error) run.Fail(fmt::format("{} is answered with {}", name, ErrorName(record.error)));
        const bool isFrame = command == PF_Cmd_FRAME_SETUP || command == PF_Cmd_FRAME_SETDOWN;
        if (!isFrame && !SameBytes(before, after)) {
            run.Fail(fmt::format("{} changes the out data", name));
        }
        if (DigestOf(world) != pixels) run.Fail(fmt::format("{} changes the output world", name));
        if (!record.balance.IsBalanced()) run.Fail(fmt::format("{} leaves {} open", name, record.balance.Text()));
    }
    run.Count("commands", static_cast<double>(commands.size()));
}

void DrawsItsDefaults(CheckRun& run) {
    CheckFixture fixture(run);
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        const std::string what = fmt::format("the default frame at {} bits", static_cast<int>(depth));
        if (depth == Depth::k32 && !(fixture.Session().OutFlags2() & PF_OutFlag2_FLOAT_COLOR_AWARE)) continue;
        const World layer = TestPicture(64, 64, depth);
        FrameRequest request;
        request.layer = &layer;
        const auto frame = fixture.Draw(request, what);
        if (!frame) continue;
        if (frame->output.Width() == 0) {
            run.Fail(fmt::format("{} is empty", what));
        } else if (AllZero(frame->output)) {
            run.Fail(fmt::format("{} is all zero", what));
        }
        if (const auto place = NotFinite(frame->output)) {
            run.Fail(fmt::format("{} has a channel at {} that is not finite", what, *place));
        }
    }
    fixture.NoteMisbehaviour("the default frames");
}

}  // namespace

std::vector<Check> DeclarationChecks() {
    return {
        {"2.1", "it announces a consistent version and flags, the same each time", AnnouncesItself},
        {"2.2", "its parameters are declared consistently", DeclaresSoundly},
        {"2.3", "its about text fits the message", TellsAboutItself},
        {"2.4", "it works in other and older hosts", StandsOtherHosts},
        {"2.5", "unknown commands do nothing", IgnoresUnknownCommands},
        {"2.6", "it draws a frame with its defaults", DrawsItsDefaults},
    };
}

}  // namespace umbrant::host
