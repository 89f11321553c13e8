// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Level 6: values inside the panel's limits, at them, beyond them, and no values at all.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "host/compositing/rectangles.h"
#include "host/validate/checks/check_fixture.h"
#include "host/validate/checks/frames/null_pointer_check.h"
#include "host/validate/runner/process_memory.h"
#include "host/validate/runner/processes.h"

namespace umbrant::host {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// How many sets of random values are drawn: fewer where OpenGL is software.
int SetsFor(const CheckRun& run, int many, int few) {
    const char* renderer = std::getenv("UMBRANT_RENDERER");
    const bool cheap = !run.Options().softwareGl || (renderer && std::strcmp(renderer, "cpu") == 0);
    return cheap ? many : few;
}

/// Ranges wider than this are drawn from their low end, since what they count may cost time.
constexpr double kWide = 200;
constexpr double kLowSteps = 12;

void DrawValue(CheckRun& run, ParamRow& row) {
    PF_ParamDefUnion& u = row.def.u;
    if (const auto range = RangeOf(row)) {
        const bool wide = KindOf(row.def) != ParamKind::kAngle && range->validMax - range->validMin > kWide;
        const double high = wide ? LowNumber(*range, kLowSteps) : range->validMax;
        SetNumberUnchecked(row, run.DrawReal(wide && range->validMin < 0 ? 0 : range->validMin, high));
        return;
    }
    const auto byte = [&] { return static_cast<A_u_char>(run.Draw(0, 255)); };
    switch (KindOf(row.def)) {
        case ParamKind::kCheckBox:
            u.bd.value = run.Draw(0, 1);
            break;
        case ParamKind::kColor:
            u.cd.value = {255, byte(), byte(), byte()};
            break;
        case ParamKind::kPopup:
            u.pd.value = run.Draw(1, std::max<int>(u.pd.num_choices, 1));
            break;
        case ParamKind::kPoint:
            row.point = LayerPoint{run.DrawReal(-20, 120), run.DrawReal(-20, 120), false};
            break;
        default:
            break;
    }
}

/// Draws with the values and says what is wrong with the frame.
void Judge(CheckRun& run, CheckFixture& fixture, const ParamSet& params, const World& layer, const std::string& what,
           bool mustSucceed) {
    run.Count("frames");
    const auto frame = fixture.Session().Render(TexturedRequestOf(layer, params));
    if (!frame) {
        if (mustSucceed) run.Fail(fmt::format("{}: {}", what, frame.error().sentence));
        return;
    }
    if (const auto place = NotFinite(frame->output); place && mustSucceed) {
        run.Fail(fmt::format("{}: the channel at {} is not finite", what, *place));
    }
}

std::string ValuesText(const ParamSet& params) {
    std::string text;
    for (const int index : SettableRows(params)) {
        text += fmt::format("{}{}={}", text.empty() ? "" : " ", RowName(params.Row(index)), params.ValueText(index));
    }
    return text;
}

void DrawsInsideLimits(CheckRun& run) {
    CheckFixture fixture(run);
    const int sets = SetsFor(run, 200, 30);
    const std::vector<Variant> variants = StyleVariants(fixture.Session().Params(), 3);
    for (const Depth depth : {Depth::k8, Depth::k32}) {
        for (int i = 0; i < sets * 3; ++i) {
            const World layer = TestPicture(run.Draw(1, 96), run.Draw(1, 96), depth);
            ParamSet params = fixture.Session().Params();
            for (const int index : SettableRows(params)) DrawValue(run, params.RawRow(index));
            variants[static_cast<std::size_t>(i) % variants.size()].apply(params);
            Judge(run, fixture, params, layer, fmt::format("with {}", ValuesText(params)), true);
            if (run.Failed()) return;
        }
        fixture.Log().Clear();
    }
    fixture.NoteMisbehaviour("");
}

/// The least, the greatest and the usual value of a row, as numbers; one for a row without.
std::vector<double> Ends(const ParamRow& row) {
    if (KindOf(row.def) == ParamKind::kPopup) return {1, static_cast<double>(row.def.u.pd.num_choices)};
    if (KindOf(row.def) == ParamKind::kCheckBox) return {0, 1};
    const auto range = RangeOf(row);
    if (!range) return {};
    if (KindOf(row.def) == ParamKind::kAngle) return {-360, 0, 90, 180, 270, 360};
    // Of what may cost time, the middle of the slider replaces its far end.
    const bool wide = range->validMax - range->validMin > kWide;
    return {range->validMin, wide ? LowNumber(*range, 100) : range->validMax};
}

void SetEnd(ParamRow& row, double value) {
    if (KindOf(row.def) == ParamKind::kPopup) {
        row.def.u.pd.value = static_cast<PF_ParamValue>(value);
    } else if (KindOf(row.def) == ParamKind::kCheckBox) {
        row.def.u.bd.value = static_cast<PF_ParamValue>(value);
    } else {
        SetNumberUnchecked(row, value);
    }
}

void DrawsAtLimits(CheckRun& run) {
    CheckFixture fixture(run);
    fixture.Cheapen();
    const std::vector<int> rows = SettableRows(fixture.Session().Params());
    const World layer = TestPicture(24, 20, Depth::k32);
    // Each end of each row alone; then random choices of ends, in which every pair of rows meets soon.
    for (const int index : rows) {
        for (const double value : Ends(fixture.Session().Params().Row(index))) {
            ParamSet params = fixture.Session().Params();
            SetEnd(params.RawRow(index), value);
            Judge(run, fixture, params, layer, fmt::format("with {} at {}", RowName(params.Row(index)), value), true);
        }
    }
    const int sets = SetsFor(run, 64, 24);
    for (int i = 0; i < sets; ++i) {
        ParamSet params = fixture.Session().Params();
        for (const int index : rows) {
            const std::vector<double> ends = Ends(params.Row(index));
            if (!ends.empty()) {
                SetEnd(params.RawRow(index),
                       ends[static_cast<std::size_t>(run.Draw(0, static_cast<int>(ends.size()) - 1))]);
            }
        }
        Judge(run, fixture, params, layer, fmt::format("with {}", ValuesText(params)), true);
    }
    fixture.NoteMisbehaviour("");
}

/// One row, one odd value.
struct OddValue {
    std::string name;
    int row;
    std::function<void(ParamRow&)> set;
};

/// Draws with each odd value alone. An error is an answer; a crash or a hang is none, and the value's name is then the
/// last that this process printed.
void DrawOddValues(CheckRun& part, CheckFixture& fixture, const std::vector<OddValue>& values) {
    constexpr long kMostMemory = 1L << 30;
    fixture.Cheapen();
    const World layer = TestPicture(16, 12, Depth::k32);
    for (const OddValue& odd : values) {
        ParamSet params = fixture.Session().Params();
        odd.set(params.RawRow(odd.row));
        std::puts(odd.name.c_str());
        std::fflush(stdout);
        const long before = PeakBytes();
        Judge(part, fixture, params, layer, fmt::format("with {}", odd.name), false);
        if (PeakBytes() - before > kMostMemory)
            part.Fail(fmt::format("with {}: more than 1 GiB is allocated", odd.name));
    }
    part.Count("odd values", static_cast<double>(values.size()));
    fixture.EndBalanced("after odd values");
}

void AddPopupItems(std::vector<OddValue>& values, const ParamRow& row) {
    std::vector<int> items{0, -1, row.def.u.pd.num_choices + 1};
    for (std::size_t i = 0; i < row.items.size(); ++i) {
        if (row.items[i].starts_with("(")) items.push_back(static_cast<int>(i) + 1);
    }
    for (const int item : items) {
        values.push_back({fmt::format("{} at item {}", RowName(row), item), row.index,
                          [item](ParamRow& r) { r.def.u.pd.value = item; }});
    }
}

/// A count for which an effect may ask for more memory than there is. Without a sanitizer `new` says so by an
/// exception, with one it ends the process.
bool IsBeyondMemory(const ParamRow& row, double number) {
    constexpr double kMany = 1e6;
    return KindOf(row.def) == ParamKind::kFloat && std::abs(number) > kMany && SanitizerRuntime();
}

void AddNumbers(std::vector<OddValue>& values, const ParamRow& row, const std::vector<double>& numbers) {
    for (const double number : numbers) {
        if (IsBeyondMemory(row, number)) continue;
        values.push_back({fmt::format("{} at {}", RowName(row), number), row.index,
                          [number](ParamRow& r) { SetNumberUnchecked(r, number); }});
    }
}

void DrawsBeyondLimits(CheckRun& run) {
    RunSubChecks(run, {{"with values beyond their limits", [](CheckRun& part) {
                            CheckFixture fixture(part);
                            std::vector<OddValue> values;
                            for (const int index : SettableRows(fixture.Session().Params())) {
                                const ParamRow& row = fixture.Session().Params().Row(index);
                                const auto range = RangeOf(row);
                                if (KindOf(row.def) == ParamKind::kPopup) AddPopupItems(values, row);
                                if (!range) continue;
                                AddNumbers(values, row, {range->validMin - 1, 0});
                                if (range->validMax - range->validMin <= kWide) {
                                    AddNumbers(values, row, {range->validMax + 1});
                                }
                            }
                            DrawOddValues(part, fixture, values);
                        }}});
}

void StandsOddNumbers(CheckRun& run) {
    RunSubChecks(
        run,
        {{"with odd numbers", [](CheckRun& part) {
              LimitMemory();
              CheckFixture fixture(part);
              std::vector<OddValue> values;
              for (const int index : SettableRows(fixture.Session().Params())) {
                  const ParamRow& row = fixture.Session().Params().Row(index);
                  if (KindOf(row.def) == ParamKind::kFloat) {
                      AddNumbers(values, row, {kNaN, kInfinity, -kInfinity, 1e308, -1e308, -0.0, 5e-324, 1e-300});
                  } else if (KindOf(row.def) == ParamKind::kAngle) {
                      // Fixed numbers end there.
                      AddNumbers(values, row, {-32768, 32767.99998, 1.0 / 65536});
                  } else if (KindOf(row.def) == ParamKind::kPoint) {
                      for (const double place : {-32768.0, 32767.99998}) {
                          values.push_back({fmt::format("{} at {}", RowName(row), place), index, [place](ParamRow& r) {
                                                r.point = LayerPoint{place, place, false};
                                            }});
                      }
                  }
              }
              DrawOddValues(part, fixture, values);
          }}});
}

}  // namespace

std::vector<Check> ParameterChecks() {
    return {
        {"6.1", "it draws with any values inside the panel's limits", DrawsInsideLimits, Needs::kNothing, 4},
        {"6.2", "it draws with values at their limits", DrawsAtLimits, Needs::kNothing, 4},
        {"6.3", "it survives values beyond their limits", DrawsBeyondLimits, Needs::kNothing, 2},
        {"6.4", "it survives NaN and infinite values", StandsOddNumbers, Needs::kNothing, 2},
        {"6.5", "it survives null pointers", StandsNullPointers, Needs::kNothing, 2},
    };
}

}  // namespace umbrant::host
