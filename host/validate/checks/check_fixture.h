// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// What most checks need: the module loaded, a session on it with its event log on, and test images to draw from. The
// host is the one that `umbrant render` uses; only accounting is on.

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "host/accounting/event_log.h"
#include "host/compositing/world.h"
#include "host/parameters/param_kind.h"
#include "host/session/effect_session.h"
#include "host/validate/runner/check_run.h"

namespace umbrant::host {

/// A soft disc on nothing, every pixel with a colour of its own. Straight alpha; channels in the depth's full range.
World TestPicture(int width, int height, Depth depth);
/// Requests for a frame of the layer: with the default values, or with these. The layer must outlive the request.
FrameRequest RequestOf(const World& layer);
FrameRequest RequestOf(const World& layer, const ParamSet& params);
/// The same; the layer is also the value of the texture parameter.
FrameRequest TexturedRequestOf(const World& layer, const ParamSet& params);
/// The limits of the interface's integers: coordinates, times, indices.
inline constexpr A_long kLowest = std::numeric_limits<A_long>::min();
inline constexpr A_long kHighest = std::numeric_limits<A_long>::max();
/// The pixels, paddings left out, as one number (FNV-1a).
std::uint64_t DigestOf(const World& world);
/// Whether two records are the same to the byte, their padding and unused members too: an effect may write none of
/// them.
template <class Record>
bool SameBytes(const Record& a, const Record& b) {
    return std::memcmp(static_cast<const void*>(&a), static_cast<const void*>(&b), sizeof(Record)) == 0;
}

/// Whether size and pixels are the same, paddings left out.
bool SamePixels(const World& a, const World& b);
/// The largest difference between two channels, full scale being 1; 1 for worlds of different sizes or depths. Float
/// pixels that are no numbers in both count as equal.
double LargestDifference(const World& a, const World& b);
/// The first channel of a float world that is infinite or no number, as "x,y"; nothing when all are finite.
std::optional<std::string> NotFinite(const World& world);
/// Whether every byte of every pixel is zero.
bool AllZero(const World& world);

/// "(0, 0) to (64, 64)".
std::string RectText(const PF_LRect& rect);

/// The module and a session on it.
class CheckFixture {
 public:
    /// Loads and starts. What cannot be loaded or set up fails the run and ends it.
    explicit CheckFixture(CheckRun& run, SessionOptions options = {});
    /// Notes the misbehaviour that was not asked for by then.
    ~CheckFixture();
    CheckFixture(const CheckFixture&) = delete;
    CheckFixture& operator=(const CheckFixture&) = delete;

    const Module& Loaded() const { return *module_; }
    EffectSession& Session() { return *session_; }
    EventLog& Log() { return log_; }

    /// Sets every number with a wide range low, so that a frame costs little whatever the module calls its costs.
    void Cheapen();
    /// Draws a frame of a test picture. An error of the effect fails the run and gives nothing.
    std::optional<Frame> Draw(const FrameRequest& request, const std::string& what);
    /// Pre-render alone, likewise.
    std::optional<PreRendered> Ask(const FrameRequest& request, const std::string& what);

    /// Sends the panel's commands: the about text, an update, a draw event where the effect draws rows itself.
    void TouchPanel();
    /// Ends the session; set-down's error, what is open then, and what the host saw done wrong fail the run.
    void EndBalanced(const std::string& when);
    /// Notes what the host saw the effect do wrong since the last call.
    void NoteMisbehaviour(const std::string& when);
    /// Drops what the host has seen so far: it was asked for.
    void Forget();

 private:
    CheckRun& trial_;
    EventLog log_;
    std::optional<Module> module_;
    std::optional<EffectSession> session_;
    std::size_t misbehaviourSeen_ = 0;
};

/// One way to set the rows of an effect, with its name for findings.
struct Variant {
    std::string name;  ///< "the defaults", "style/shadow-type 2"
    std::function<void(ParamSet&)> apply;
};

/// The defaults, and each item of every popup of at most `mostItems` items that a user can reach, alone. Rows that the
/// effect declares disabled are left alone.
std::vector<Variant> StyleVariants(const ParamSet& params, int mostItems);

/// A name for a row: its path, or "#12".
std::string RowName(const ParamRow& row);
/// The rows whose value a user can change.
std::vector<int> SettableRows(const ParamSet& params);
/// The range of a row's value, ten turns either way for an angle; nothing for a row without a
/// number.
std::optional<NumberRange> RangeOf(const ParamRow& row);
/// A low number of the row, at most `steps` of its units above its least.
double LowNumber(const NumberRange& range, double steps);

}  // namespace umbrant::host
