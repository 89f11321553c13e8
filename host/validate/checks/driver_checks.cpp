// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 7, below the module: memory of its own that cannot be had, and a driver that fails. Both by a library that is
// loaded before all others; see host/validate/shim.

#include <dlfcn.h>
#include <fmt/format.h>
#include <link.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <thread>

#include "host/validate/checks/check_fixture.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"
#include "host/validate/shim/shim_control.h"

namespace umbrant::host {

namespace {

/// The library's functions, when this process has it.
struct Shim {
    ShimSetModule setModule = nullptr;
    ShimFailAllocation failAllocation = nullptr;
    ShimCountAllocations countAllocations = nullptr;
    ShimSetFault setFault = nullptr;
    ShimCountFaults countFaults = nullptr;

    static Shim Find(CheckRun& run) {
        Shim shim;
        shim.setModule = reinterpret_cast<ShimSetModule>(dlsym(RTLD_DEFAULT, kShimSetModule));
        shim.failAllocation = reinterpret_cast<ShimFailAllocation>(dlsym(RTLD_DEFAULT, kShimFailAllocation));
        shim.countAllocations = reinterpret_cast<ShimCountAllocations>(dlsym(RTLD_DEFAULT, kShimCountAllocations));
        shim.setFault = reinterpret_cast<ShimSetFault>(dlsym(RTLD_DEFAULT, kShimSetFault));
        shim.countFaults = reinterpret_cast<ShimCountFaults>(dlsym(RTLD_DEFAULT, kShimCountFaults));
        if (!shim.setModule || !shim.setFault) {
            run.Skip(
                "umbrant_shim.so, which intercepts the module's driver calls, was not found in the program's folder");
        }
        return shim;
    }
};

/// The addresses of the module's code.
std::pair<const char*, const char*> CodeOf(const std::filesystem::path& file) {
    struct Search {
        std::filesystem::path file;
        const char* begin = nullptr;
        const char* end = nullptr;
    } search{file};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* pointer) {
            Search& wanted = *static_cast<Search*>(pointer);
            std::error_code error;
            if (!info->dlpi_name || !std::filesystem::equivalent(info->dlpi_name, wanted.file, error)) return 0;
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const ElfW(Phdr)& header = info->dlpi_phdr[i];
                if (header.p_type != PT_LOAD || !(header.p_flags & PF_X)) continue;
                wanted.begin = reinterpret_cast<const char*>(info->dlpi_addr + header.p_vaddr);
                wanted.end = wanted.begin + header.p_memsz;
            }
            return 1;
        },
        &search);
    return {search.begin, search.end};
}

std::vector<Variant> StylesOf(CheckFixture& fixture) {
    return StyleVariants(fixture.Session().Params(), 3);
}

/// Draws one style; the frame, or nothing when the effect refused.
std::optional<Frame> DrawStyle(CheckRun& part, CheckFixture& fixture, const Variant& variant) {
    const World layer = TestPicture(20, 16, Depth::k8);
    ParamSet params = fixture.Session().Params();
    variant.apply(params);
    FrameRequest request;
    request.layer = &layer;
    request.params = &params;
    part.Count("frames");
    auto frame = fixture.Session().Render(request);
    if (!frame) return std::nullopt;
    return std::move(*frame);
}

/// Every allocation of one style's frame fails in turn. An error is an answer, and so is the picture as it should be.
void FailAllocationsOf(CheckRun& part, std::size_t style) {
    if (SanitizerRuntime()) part.Skip("a sanitizer's allocator replaces the one of these checks");
    const Shim shim = Shim::Find(part);
    CheckFixture fixture(part);
    fixture.Cheapen();
    const auto [begin, end] = CodeOf(fixture.Loaded().File());
    const std::vector<Variant> variants = StylesOf(fixture);
    if (style >= variants.size()) return;
    const Variant& variant = variants[style];
    const auto usual = DrawStyle(part, fixture, variant);
    shim.setModule(begin, end);
    shim.failAllocation(0);
    static_cast<void>(DrawStyle(part, fixture, variant));
    const long count = shim.countAllocations();
    for (long k = 1; k <= count; ++k) {
        std::printf("allocation %ld of %ld\n", k, count);
        std::fflush(stdout);
        fixture.Log().Clear();
        shim.failAllocation(k);
        const auto frame = DrawStyle(part, fixture, variant);
        shim.failAllocation(0);
        part.Count("faults");
        if (frame && frame->message.empty() && usual && !SamePixels(frame->output, usual->output)) {
            part.Fail(fmt::format("{}: when allocation {} fails, the frame differs without an error or message",
                                  variant.name, k));
        }
    }
    const auto after = DrawStyle(part, fixture, variant);
    if (usual && (!after || !SamePixels(after->output, usual->output))) {
        part.Fail(fmt::format("{}: the frame differs after failed allocations", variant.name));
    }
    const auto ended = fixture.Session().End();
    if (!ended) part.Fail(ended.error().sentence);
    if (!fixture.Session().Open().IsBalanced()) {
        part.Fail(
            fmt::format("{}: still open after failed allocations: {}", variant.name, fixture.Session().Open().Text()));
    }
}

void StandsWantOfItsOwnMemory(CheckRun& run) {
    Shim::Find(run);
    std::vector<SubCheck> subChecks;
    constexpr std::size_t kStyles = 4;
    for (std::size_t style = 0; style < kStyles; ++style) {
        subChecks.push_back({fmt::format("with the module's own allocations failing, style {}", style + 1),
                             [style](CheckRun& part) { FailAllocationsOf(part, style); }});
    }
    RunSubChecks(run, subChecks);
}

struct DriverFault {
    ShimFault fault;
    const char* name;
};

constexpr DriverFault kDriverFaults[] = {
    {SHIM_NO_CONTEXT, "no context available"},      {SHIM_COMPILE_FAILS, "shaders that do not compile"},
    {SHIM_LINK_FAILS, "programs that do not link"}, {SHIM_INCOMPLETE_FRAMEBUFFER, "incomplete framebuffers"},
    {SHIM_OUT_OF_MEMORY, "no memory for textures"}, {SHIM_SMALL_TEXTURES, "small textures only"},
    {SHIM_LOST_CONTEXT, "lost contexts"},
};

void JudgeDriverFrame(CheckRun& part, const DriverFault& fault, const Variant& variant,
                      const std::optional<Frame>& frame, const std::optional<Frame>& usual) {
    if (!frame || !usual || !frame->message.empty() || SamePixels(frame->output, usual->output)) return;
    part.Fail(fmt::format("{}: with {} the frame differs without an error or a message", variant.name, fault.name));
}

/// The driver fails from the module's first call on, or only once its frames are drawn.
void FailDriver(CheckRun& part, const DriverFault& fault, bool fromTheStart) {
    const Shim shim = Shim::Find(part);
    std::vector<std::optional<Frame>> usual;
    std::vector<Variant> variants;
    {
        CheckFixture fixture(part);
        fixture.Cheapen();
        variants = StylesOf(fixture);
        for (const Variant& variant : variants) usual.push_back(DrawStyle(part, fixture, variant));
        if (!fromTheStart) {
            shim.setFault(fault.fault);
            for (std::size_t i = 0; i < variants.size(); ++i) {
                JudgeDriverFrame(part, fault, variants[i], DrawStyle(part, fixture, variants[i]), usual[i]);
            }
            part.Count("driver calls met", static_cast<double>(shim.countFaults()));
            shim.setFault(SHIM_NONE);
            fixture.EndBalanced(fmt::format("after {}", fault.name));
            return;
        }
    }
    shim.setFault(fault.fault);
    auto module = Module::Load(part.Options().module);
    if (!module) return;
    // An error is an answer.
    auto session = EffectSession::Start(*module);
    if (!session) return;
    const World layer = TestPicture(20, 16, Depth::k8);
    std::thread([&] {
        for (std::size_t i = 0; i < variants.size(); ++i) {
            ParamSet params = session->Params();
            for (const int index : SettableRows(params)) {
                const auto range = RangeOf(params.Row(index));
                const bool wide = range && range->validMax - range->validMin >= 200;
                if (wide && KindOf(params.Row(index).def) != ParamKind::kAngle) {
                    SetNumberUnchecked(params.RawRow(index), LowNumber(*range, 5));
                }
            }
            variants[i].apply(params);
            FrameRequest request;
            request.layer = &layer;
            request.params = &params;
            part.Count("frames");
            auto frame = session->Render(request);
            if (frame) JudgeDriverFrame(part, fault, variants[i], std::optional<Frame>(std::move(*frame)), usual[i]);
        }
    }).join();
    part.Count("driver calls met", static_cast<double>(shim.countFaults()));
    shim.setFault(SHIM_NONE);
    const auto ended = session->End();
    if (!ended) part.Fail(ended.error().sentence);
    if (!session->Open().IsBalanced()) {
        part.Fail(fmt::format("with {} something is still open: {}", fault.name, session->Open().Text()));
    }
}

void StandsAFailingDriver(CheckRun& run) {
    Shim::Find(run);
    std::vector<SubCheck> subChecks;
    for (const DriverFault& fault : kDriverFaults) {
        for (const bool fromTheStart : {true, false}) {
            subChecks.push_back({fmt::format("with {}{}", fault.name, fromTheStart ? "" : ", later"),
                                 [fault, fromTheStart](CheckRun& part) { FailDriver(part, fault, fromTheStart); }});
        }
    }
    RunSubChecks(run, subChecks);
    if (!run.Failed() && run.Result().figures["driver calls met"] == 0) {
        run.Skip("the module makes no call to OpenGL that could fail");
    }
}

}  // namespace

std::vector<Check> DriverChecks() {
    return {
        {"7.4", "it survives failed allocations of its own", StandsWantOfItsOwnMemory, Needs::kShim, 4},
        {"7.5", "it survives a failing driver, and reports the failure", StandsAFailingDriver, Needs::kShim, 4},
    };
}

}  // namespace umbrant::host
