// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A folder with a short sequence and a still picture, and the program over them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/cli/in_process.h"

namespace umbrant::host {

/// A preset with one animated value.
inline constexpr char kMovingBorder[] =
    R"({ "version": 2, "keyframes": { "paint/border": [ { "frame": 1, "value": 0 }, { "frame": 5, "value": 4 } ] } })";

class CliSequence : public testing::Test {
 protected:
    CliSequence() {
        for (int frame = 1; frame <= 6; ++frame) {
            WriteLayer(folder_ / ("in." + std::to_string(frame) + ".png"), 5, 3,
                       {255, static_cast<A_u_char>(10 * frame), 100, 50});
        }
        WriteLayer(folder_ / "still.png", 5, 3, {255, 200, 100, 50});
    }

    std::vector<std::string> Arguments(const std::string& input, const std::string& output,
                                       const std::vector<std::string>& more,
                                       const std::string& module = "painter") const {
        std::vector<std::string> all = {"render", input, "-o", output, "--module", TestModule(module)};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    Outcome Render(const std::vector<std::string>& more = {}, const std::string& input = "in.@.png",
                   const std::string& output = "out.##.png") const {
        return RunInProcess(folder_, Arguments(input, output, more));
    }
    int Red(const std::string& name) const {
        Picture picture = Read(folder_ / name);
        return picture.pixels.IsNull() ? -1 : Pixel8(picture.pixels, 2, 1).red;
    }
    bool Exists(const std::string& name) const { return std::filesystem::exists(folder_ / name); }

    const Folder folder_;
};

}  // namespace umbrant::host
