// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A session on the test painter, and what the painter saw.

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/compositing/rectangles.h"
#include "host/session/effect_session.h"
#include "tests/modules/painter.h"

namespace umbrant::host {

inline Result<Module> LoadTestModule(const std::string& name) {
    return Module::Load(std::filesystem::path(TEST_MODULES) / (name + ".so"));
}

class SessionTest : public ::testing::Test {
 protected:
    explicit SessionTest(const char* module = "painter") : module_(LoadTestModule(module)) {
        library_ = dlopen(module_->File().c_str(), RTLD_NOW | RTLD_NOLOAD);
        seen = static_cast<PainterSeen*>(dlsym(library_, "painterSeen"));
        *seen = {};
    }
    ~SessionTest() override {
        session.reset();
        dlclose(library_);
    }

    void Start(SessionOptions options = {}) {
        Result<EffectSession> started = EffectSession::Start(*module_, std::move(options));
        ASSERT_TRUE(started) << started.error().sentence;
        session.emplace(*std::move(started));
    }
    void Set(const char* path, const std::string& text) {
        const Result<Done> set = session->Params().SetFromText(path, text);
        ASSERT_TRUE(set) << set.error().sentence;
    }

    /// A world whose pixel (x, y) is {200, x + 1, y + 1, 7}.
    static World Picture(int width, int height, A_u_char blue = 7) {
        World world = World::Create(width, height, Depth::k8);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                RowOf<PF_Pixel>(world.Def(), y)[x] = {200, static_cast<A_u_char>(x + 1), static_cast<A_u_char>(y + 1),
                                                      blue};
            }
        }
        return world;
    }
    static PF_Pixel At(const World& world, int x, int y) { return RowOf<PF_Pixel>(world.Def(), y)[x]; }

    Result<Module> module_;
    void* library_ = nullptr;
    PainterSeen* seen = nullptr;
    std::optional<EffectSession> session;
};

MATCHER_P4(IsRect, left, top, right, bottom, "") {
    *result_listener << "which is " << arg.left << "," << arg.top << "," << arg.right << "," << arg.bottom;
    return arg.left == left && arg.top == top && arg.right == right && arg.bottom == bottom;
}

MATCHER_P4(IsPixel, alpha, red, green, blue, "") {
    *result_listener << "which is " << int(arg.alpha) << "," << int(arg.red) << "," << int(arg.green) << ","
                     << int(arg.blue);
    return arg.alpha == alpha && arg.red == red && arg.green == green && arg.blue == blue;
}

}  // namespace umbrant::host
