// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// Which pixels an effect gets of its layers: the host's own, where it has promised to write into none, or a copy.

#include <optional>
#include <vector>

#include "host/suites/offered_rows.h"
#include "tests/host/session/session_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::IsEmpty;

/// On a painter that has promised to write into no layer.
class SharedLayers : public SessionTest {
 protected:
    SharedLayers() : SessionTest("sharing_painter") {}

    /// Draws a frame with a texture; whether the effect got these very pixels.
    bool Shares(EffectSession& drawing, const PF_LRect& region = {-2, -2, 6, 5}) {
        frame_ =
            drawing.Render({.layer = &layer_, .texture = &texture_, .textureOrigin = {{1}, {-1}}, .region = region});
        EXPECT_TRUE(*frame_) << frame_->error().sentence;
        const bool shares = seen->inputWorld.data == layer_.Def().data;
        EXPECT_EQ(seen->pictureWorld.data == texture_.Def().data, shares);
        return shares;
    }
    std::vector<A_u_char> Bytes() const {
        const PF_EffectWorld& world = (*frame_)->output.Def();
        std::vector<A_u_char> bytes;
        for (int y = 0; y < world.height; ++y) {
            const auto* row = RowOf<A_u_char>(world, y);
            bytes.insert(bytes.end(), row, row + std::ptrdiff_t{4} * world.width);
        }
        return bytes;
    }

    const World layer_ = Picture(4, 3);
    const World texture_ = Picture(3, 3, 90);
    std::optional<Result<Frame>> frame_;
};

TEST_F(SharedLayers, WholeLayersAreNotCopied) {
    Start();
    Set("paint/border", "2");
    EXPECT_TRUE(Shares(*session));
    EXPECT_EQ(seen->inputWorld.width, 4);
    EXPECT_EQ(seen->pictureWorld.origin_x, 1);
    EXPECT_EQ(seen->pictureWorld.origin_y, -1);
    const auto bytes = Bytes();
    {
        // What other hosts do is the same picture.
        const WithoutRows asOtherHosts;
        EXPECT_FALSE(Shares(*session));
        EXPECT_EQ(Bytes(), bytes);
    }
    EXPECT_FALSE(Shares(*session, {1, 0, 4, 3})) << "parts of both";
    auto another = EffectSession::StartInstance(*session);
    ASSERT_TRUE(another) << another.error().sentence;
    EXPECT_TRUE(Shares(*another));
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
}

TEST_F(SharedLayers, AWatchedLayerIsCopied) {
    SessionOptions options;
    options.worldWatch = [](World&, WorldRole, bool) {};
    Start(std::move(options));
    Set("paint/border", "2");
    EXPECT_FALSE(Shares(*session));
}

TEST_F(SessionTest, AnEffectThatMayWriteIntoItsLayerGetsACopy) {
    Start();
    const World layer = Picture(4, 3);
    ASSERT_TRUE(session->Render({.layer = &layer}));
    EXPECT_NE(seen->inputWorld.data, layer.Def().data);
    EXPECT_EQ(seen->inputWorld.width, 4);
}

}  // namespace

}  // namespace umbrant::host
