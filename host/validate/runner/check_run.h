// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A check of a module, and the one run of it: what the check is given, and what it finds. Checks know no command line
// and no processes; the runner gives each a process of its own.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "hostapi/suites/umbrant_host_suite.h"

namespace umbrant::host {

class EventLog;
class ParamSet;

/// How a check ended.
enum class Verdict { kPass, kWarn, kFail, kCrash, kTimeout, kSkip, kWaived };

/// "pass", "warn", "fail", "crash", "timeout", "skip", "waived".
const char* VerdictName(Verdict verdict);
std::optional<Verdict> VerdictOf(const std::string& name);

/// One sentence about something that is wrong.
struct Finding {
    std::string text;
    Verdict weight = Verdict::kFail;  ///< kWarn, kFail, kCrash or kTimeout
    std::string repeat;               ///< options that bring back this finding alone; usually none
    std::string waiver;               ///< why it is waived; empty when it is not
};

/// What a check came to.
struct CheckResult {
    Verdict verdict = Verdict::kPass;
    std::vector<Finding> findings;
    std::string skipReason;
    std::map<std::string, double> figures;  ///< "frames", "faults", "milliseconds a frame", ...
    bool isNoModule = false;                ///< the file is no effect module at all, so other checks have no subject
    /// For a fault that was asked for: the calls that could have been refused, and how often each came at most.
    std::map<std::string, int> calls;
};

/// One fault to put into the host: the k-th call, from 1, of a callee fails with an error.
struct FaultPlan {
    std::string callee;
    int call = 1;
    int error = 4;
    /// "CALLEE:K:ERROR"; nothing for another form.
    static std::optional<FaultPlan> FromText(const std::string& text);
    std::string Text() const;
};

/// What all checks of a run share.
struct CheckRunOptions {
    std::filesystem::path module;
    std::uint64_t seed = 1;
    int timeoutMilliseconds = 30000;
    bool inProcess = false;
    int soakSeconds = 60;
    std::optional<FaultPlan> fault;  ///< the fault checks do this one alone
    std::filesystem::path trace;     ///< where the check's events are added; empty for nowhere
    std::filesystem::path shim;      ///< the interposed library; empty when there is none
    /// What the look at those rows sets the module up for.
    UMBRANT_Renderer rendererOfProbe = UMBRANT_Renderer_ANY;
    /// Whether a module with these declared rows draws faster by the CPU renderer that it may have.
    std::function<bool(const ParamSet&)> isProcessorBetter;
    bool softwareGl = false;  ///< what that said
};

/// The reason of a skip for what this machine, at this moment, gives no sure answer to.
std::string NotMeasured(const std::string& what);

/// Thrown to end a check early, after what it found was noted.
struct CheckRunOver {};

/// One run of one check.
class CheckRun {
 public:
    explicit CheckRun(const CheckRunOptions& options);

    const CheckRunOptions& Options() const { return options_; }
    /// Seeded from the run's seed alone, so that a check draws the same whatever ran before it.
    std::mt19937_64& Random() { return random_; }
    int Draw(int low, int high);  ///< uniform, both ends included
    double DrawReal(double low, double high);

    /// Notes a finding once; the same sentence again is dropped.
    void Fail(const std::string& text);
    void Warn(const std::string& text);
    /// A finding with the options that repeat it.
    void Note(Finding finding);
    [[noreturn]] void FailAndEnd(const std::string& text);
    /// For a file that is no effect module.
    [[noreturn]] void FailAsNoModule(const std::string& text);
    [[noreturn]] void Skip(const std::string& reason);
    /// A number to report; several notes of one name are added up.
    void Count(const std::string& figure, double amount = 1);
    /// A call that can be refused, and how often it came.
    void NoteCall(const std::string& callee, int times);
    /// The events of the check, when a trace is wanted.
    void KeepEvents(const EventLog& log);
    bool Failed() const;

    CheckResult Result() const;
    /// Takes over what a part of the check, run elsewhere, has found.
    void Merge(const CheckResult& part);

 private:
    CheckRunOptions options_;
    std::mt19937_64 random_;
    CheckResult result_;
};

/// What a check needs of the process that runs it.
enum class Needs {
    kNothing,
    kQuiet,       ///< measures time: runs while no other check does
    kOpenGl,      ///< is about the module's OpenGL: no cheaper renderer is asked for
    kSoakTime,    ///< goes on as long as the run's soak is asked to
    kStrictHeap,  ///< is about memory of the C library: freed blocks are not kept for reuse, so a second free is seen
    kShim,        ///< the interposed library, which also means OpenGL
};

struct Check {
    const char* id;     ///< "5.4"; the number before the point is the level
    const char* title;  ///< what must hold, as a sentence without its full stop
    void (*run)(CheckRun& run);
    Needs needs = Needs::kNothing;
    int patience = 1;          ///< how many times the time limit it may take: for checks that are many runs
    bool takesFaults = false;  ///< refuses host calls, so that one fault can be asked for

    int Level() const;
};

/// Every check, in the order of their numbers.
const std::vector<Check>& AllChecks();

// The levels, one file each or two.
std::vector<Check> LoadChecks();
std::vector<Check> DeclarationChecks();
std::vector<Check> OrderChecks();
std::vector<Check> MemoryChecks();
std::vector<Check> FrameChecks();
std::vector<Check> RectangleChecks();
std::vector<Check> PanelChecks();
std::vector<Check> ParameterChecks();
std::vector<Check> PixelChecks();
std::vector<Check> FaultChecks();
std::vector<Check> DriverChecks();
std::vector<Check> ThreadChecks();
std::vector<Check> LockChecks();
std::vector<Check> ResultChecks();
std::vector<Check> EnduranceChecks();

}  // namespace umbrant::host
