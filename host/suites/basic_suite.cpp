// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The suite of suites, and the one table of what this host offers.

#include "hostapi/suites/basic_suite.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <unordered_set>

#include "host/process/fork_lock.h"
#include "host/suites/offered_rows.h"
#include "host/suites/slots.h"
#include "host/suites/tables.h"

namespace umbrant::host {

namespace {

struct OfferedSuite {
    const char* name;
    int32_t version;
    const void* suite;
    std::size_t size;
};

template <typename Suite>
constexpr OfferedSuite Offer(const char* name, int32_t version, const Suite& suite) {
    return {name, version, &suite, sizeof(Suite)};
}

const OfferedSuite kOffered[] = {
    Offer(kPFHandleSuiteName, kPFHandleSuiteVersion1, kHandleSuite),
    Offer(kPFANSISuiteName, kPFANSISuiteVersion1, kANSISuite),
    Offer(kPFWorldSuiteName, kPFWorldSuiteVersion2, kWorldSuite),
    Offer(kPFIterate8SuiteName, kPFIterate8SuiteVersion1, kIterate8Suite),
    Offer(kPFIterate16SuiteName, kPFIterate16SuiteVersion1, kIterate16Suite),
    Offer(kPFIterateFloatSuiteName, kPFIterateFloatSuiteVersion1, kIterateFloatSuite),
    Offer(kPFWorldTransformSuiteName, kPFWorldTransformSuiteVersion1, kWorldTransformSuite),
    Offer(kPFColorParamSuiteName, kPFColorParamSuiteVersion1, kColorParamSuite),
    Offer(kPFParamUtilsSuiteName, kPFParamUtilsSuiteVersion3, kParamUtilsSuite),
    Offer(kPFEffectUISuiteName, kPFEffectUISuiteVersion1, kEffectUISuite),
    Offer(kPFEffectCustomUISuiteName, kPFEffectCustomUISuiteVersion1, kEffectCustomUISuite),
    Offer(kDRAWBOT_DrawSuiteName, kDRAWBOT_DrawSuite_Version1, kDrawbotDrawSuite),
    Offer(kDRAWBOT_SupplierSuiteName, kDRAWBOT_SupplierSuite_Version1, kDrawbotSupplierSuite),
    Offer(kDRAWBOT_SurfaceSuiteName, kDRAWBOT_SurfaceSuite_Version1, kDrawbotSurfaceSuite),
    Offer(kDRAWBOT_PathSuiteName, kDRAWBOT_PathSuite_Version1, kDrawbotPathSuite),
    Offer(kAEGPPFInterfaceSuiteName, kAEGPPFInterfaceSuiteVersion1, kPFInterfaceSuite),
    Offer(kAEGPLayerSuiteName, kAEGPLayerSuiteVersion7, kLayerSuite),
    Offer(kAEGPEffectSuiteName, kAEGPEffectSuiteVersion2, kEffectSuite),
    Offer(kAEGPStreamSuiteName, kAEGPStreamSuiteVersion2, kStreamSuite),
    Offer(kAEGPDynamicStreamSuiteName, kAEGPDynamicStreamSuiteVersion2, kDynamicStreamSuite),
    Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion1, kUmbrantHostSuite),
    Offer(kUmbrantHostSuiteName, kUmbrantHostSuiteVersion2, kUmbrantHostSuite2),
};

const OfferedSuite* FindOffered(const char* name, int32_t version) {
    for (const OfferedSuite& offered : kOffered) {
        if (offered.version == version && std::strcmp(offered.name, name) == 0) return &offered;
    }
    return nullptr;
}

std::string Label(const char* name, int32_t version) {
    return std::string(name) + " " + std::to_string(version);
}

/// Copies of the tables for strict sessions: guarded while nobody holds them, so that a call through a table
/// that was given back ends the process.
class StrictTables {
 public:
    const void* Lend(const OfferedSuite& offered) {
        const std::lock_guard lock(mutex_);
        Copy& copy = copies_[&offered];
        if (!copy.page) {
            copy.size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
            void* page = mmap(nullptr, copy.size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            if (page == MAP_FAILED) return offered.suite;
            std::memcpy(page, offered.suite, offered.size);
            copy.page = page;
        }
        if (copy.held++ == 0) mprotect(copy.page, copy.size, PROT_READ);
        return copy.page;
    }
    void GiveBack(const OfferedSuite& offered) {
        const std::lock_guard lock(mutex_);
        const auto found = copies_.find(&offered);
        if (found == copies_.end() || found->second.held == 0) return;
        if (--found->second.held == 0) mprotect(found->second.page, found->second.size, PROT_NONE);
    }

 private:
    struct Copy {
        void* page = nullptr;
        std::size_t size = 0;
        int held = 0;
    };
    ForkLock mutex_;
    std::map<const OfferedSuite*, Copy> copies_;
};

// Kept: never destroyed, because an effect may give suites back while the program ends.
StrictTables& TheStrictTables() {
    static StrictTables* tables = new StrictTables;
    return *tables;
}
[[maybe_unused]] const StrictTables& earlyStrictTables =
    TheStrictTables();  // before there are threads: see fork_lock.h

SPErr AcquireSuite(const char* name, int32_t version, const void** suite) {
    if (!name || !suite) return PF_Err_BAD_CALLBACK_PARAM;
    *suite = nullptr;
    const OfferedSuite* offered = FindOffered(name, version);
    const PF_Err fault = FaultOf(std::string("AcquireSuite:") + name);
    Services* services = CurrentServices();
    if (fault == kLendNothing) return PF_Err_NONE;
    // A question that may be asked, and is answered as other hosts do.
    if (!fault && offered && offered->suite == &kUmbrantHostSuite2 && !OffersRows()) return A_Err_MISSING_SUITE;
    if (!offered || fault) {
        if (services) services->refused.Note(Label(name, version));
        return fault ? fault : A_Err_MISSING_SUITE;
    }
    if (services) {
        services->acquired.Note(Label(name, version));
        if (std::strcmp(name, kUmbrantHostSuiteName) == 0) services->leavesLayersAlone = true;
        const std::lock_guard lock(services->suitesMutex);
        ++services->suites[{name, version}];
    }
    if (CommandNotes* notes = ServiceScope::Current().second) notes->acquired.Note(Label(name, version));
    Count(Resource::kSuite, 1);
    *suite = services && services->strictLending ? TheStrictTables().Lend(*offered) : offered->suite;
    return PF_Err_NONE;
}

SPErr ReleaseSuite(const char* name, int32_t version) {
    if (!name) return PF_Err_BAD_CALLBACK_PARAM;
    if (Services* services = CurrentServices()) {
        const std::lock_guard lock(services->suitesMutex);
        const auto held = services->suites.find({name, version});
        if (held == services->suites.end()) {
            services->Report("the suite " + Label(name, version) + " was released without being acquired");
            return PF_Err_BAD_CALLBACK_PARAM;
        }
        if (--held->second == 0) services->suites.erase(held);
        if (services->strictLending) TheStrictTables().GiveBack(*FindOffered(name, version));
    }
    Count(Resource::kSuite, -1);
    return PF_Err_NONE;
}

SPBoolean IsEqual(const char* token1, const char* token2) {
    return token1 == token2 || (token1 && token2 && std::strcmp(token1, token2) == 0);
}

/// The blocks that are out, so that a wrong one is not given to the C library.
struct Blocks {
    ForkLock mutex;
    std::unordered_set<void*> live;
};

// Kept: never destroyed, because an effect may give memory back while the program ends.
Blocks& TheBlocks() {
    static Blocks* blocks = new Blocks;
    return *blocks;
}
[[maybe_unused]] const Blocks& earlyBlocks = TheBlocks();  // before there are threads: see fork_lock.h

/// Takes a block out of the list; false, with a report, when it is not in it.
bool Forget(void* block) {
    Blocks& blocks = TheBlocks();
    {
        const std::lock_guard lock(blocks.mutex);
        if (blocks.live.erase(block)) return true;
    }
    Report("an invalid or released memory block was released");
    return false;
}

void Remember(void* block) {
    Blocks& blocks = TheBlocks();
    const std::lock_guard lock(blocks.mutex);
    blocks.live.insert(block);
}

SPErr AllocateBlock(size_t size, void** block) {
    if (!block) return PF_Err_BAD_CALLBACK_PARAM;
    *block = std::malloc(size ? size : 1);
    if (!*block) return PF_Err_OUT_OF_MEMORY;
    Remember(*block);
    Count(Resource::kBlock, 1);
    return PF_Err_NONE;
}

SPErr FreeBlock(void* block) {
    if (!block) return PF_Err_NONE;
    if (!Forget(block)) return PF_Err_BAD_CALLBACK_PARAM;
    std::free(block);
    Count(Resource::kBlock, -1);
    return PF_Err_NONE;
}

SPErr ReallocateBlock(void* block, size_t size, void** moved) {
    if (!moved) return PF_Err_BAD_CALLBACK_PARAM;
    if (!block) return AllocateBlock(size, moved);
    if (!Forget(block)) return PF_Err_BAD_CALLBACK_PARAM;
    void* grown = std::realloc(block, size ? size : 1);
    Remember(grown ? grown : block);
    if (!grown) return PF_Err_OUT_OF_MEMORY;
    *moved = grown;
    return PF_Err_NONE;
}

SPErr Undefined() {
    return PF_Err_INVALID_CALLBACK;
}

template <FixedText Call, auto Function>
using Slot = Served<kSPBasicSuiteName, Call, Function>;

}  // namespace

SPBasicSuite basicSuite = {
    .AcquireSuite = Slot<"AcquireSuite", AcquireSuite>(),
    .ReleaseSuite = Slot<"ReleaseSuite", ReleaseSuite>(),
    .IsEqual = Slot<"IsEqual", IsEqual>(),
    .AllocateBlock = Slot<"AllocateBlock", AllocateBlock>(),
    .FreeBlock = Slot<"FreeBlock", FreeBlock>(),
    .ReallocateBlock = Slot<"ReallocateBlock", ReallocateBlock>(),
    .Undefined = Slot<"Undefined", Undefined>(),
};

}  // namespace umbrant::host
