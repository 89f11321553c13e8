// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors
#pragma once

// A session on the built module, and its panel.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "host/panel/panel_picture.h"
#include "host/panel/panel_rows.h"

namespace umbrant::host {

class PanelSessionTest : public ::testing::Test {
 protected:
    void Start(SessionOptions options = {}) {
        module_ = Module::Load(UMBRANT_MODULE_FILE);
        ASSERT_TRUE(*module_) << module_->error().sentence;
        auto started = EffectSession::Start(**module_, std::move(options));
        ASSERT_TRUE(started) << started.error().sentence;
        session.emplace(*std::move(started));
    }
    void Update(const std::string& shadowType) {
        ASSERT_TRUE(session->Params().SetFromText("style/shadow-type", shadowType));
        const auto updated = session->UpdateParamsUI();
        ASSERT_TRUE(updated) << updated.error().sentence;
    }
    std::vector<PanelItem> Items(int width = PanelMetrics::kUsualWidth) const { return PanelItems(*session, width); }
    /// The visible row of a parameter; null when there is none.
    static const PanelItem* Find(const std::vector<PanelItem>& items, int index) {
        for (const PanelItem& item : items) {
            if (item.index == index) return &item;
        }
        return nullptr;
    }
    static std::vector<int> Indices(const std::vector<PanelItem>& items) {
        std::vector<int> indices;
        for (const PanelItem& item : items) indices.push_back(item.index);
        return indices;
    }

 private:
    std::optional<Result<Module>> module_;

 protected:
    std::optional<EffectSession> session;
};

}  // namespace umbrant::host
