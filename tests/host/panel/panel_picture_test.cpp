// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The picture: the banner by pixel, the themes, and what is left when something fails. Type is not compared: it is the
// machine's.

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "host/compositing/rectangles.h"
#include "tests/host/panel/panel_fixture.h"

namespace umbrant::host {

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class PanelPictureTest : public PanelSessionTest {
 protected:
    PanelPicture Draw(const PanelPictureOptions& options) {
        auto picture = DrawPanel(*session, options);
        if (!picture) {
            ADD_FAILURE() << picture.error().sentence;
            return {};
        }
        return *std::move(picture);
    }
    static PF_Pixel At(const World& world, int x, int y) { return RowOf<PF_Pixel>(world.Def(), y)[x]; }
    static int Distance(const PF_Pixel& a, const PF_Pixel& b) {
        return std::max({std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
    }
    /// The strongest contrast to the ground in a row's line.
    static int Contrast(const PanelPicture& picture, int index, PF_Pixel ground) {
        const PanelItem* item = Find(picture.items, index);
        int contrast = 0;
        for (int y = static_cast<int>(item->top) + 2; y < item->top + PanelMetrics::kRow; ++y) {
            for (int x = 0; x < picture.pixels.Width(); ++x) {
                contrast = std::max(contrast, Distance(At(picture.pixels, x, y), ground));
            }
        }
        return contrast;
    }
};

TEST_F(PanelPictureTest, TheModuleDrawsItsBannerPixelByPixel) {
    Start();
    Update("normal");
    ASSERT_TRUE(Twirl(*session, "about-support", true));
    std::ifstream file(BANNER_FILE, std::ios::binary);
    const std::string banner{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    ASSERT_EQ(banner.size(), 300000u);

    // At twice the size the half-size banner has its own pixels again, 62.5 panel pixels from the left.
    const PanelPicture picture = Draw({.scale = 2});
    const PF_Rect frame = Find(picture.items, 2)->frame;
    for (int y = 0; y < 150; ++y) {
        for (int x = 0; x < 500; ++x) {
            const auto byte = [&](int channel) {
                return static_cast<A_u_char>(banner[static_cast<std::size_t>((y * 500 + x) * 4 + channel)]);
            };
            const PF_Pixel drawn = At(picture.pixels, 125 + x, 2 * frame.top + y);
            const PF_Pixel own{255, byte(2), byte(1), byte(0)};
            if (byte(3) == 255) {
                ASSERT_EQ(Distance(drawn, own), 0) << x << ", " << y;
            }
            if (byte(3) == 0) {
                ASSERT_EQ(Distance(drawn, {255, 0x23, 0x23, 0x23}), 0) << x << ", " << y;
            }
        }
    }
    EXPECT_EQ(At(picture.pixels, 124, 2 * frame.top + 75).red, 0x23) << "nothing beside it";
    EXPECT_EQ(At(picture.pixels, 625, 2 * frame.top + 75).red, 0x23);
    EXPECT_EQ(At(picture.pixels, 300, 2 * frame.top - 1).red, 0x23);
    EXPECT_TRUE(session->Open()[Resource::kDrawObject] == 0);
    EXPECT_THAT(session->Misbehaviour(), IsEmpty());
}

TEST_F(PanelPictureTest, ADrawEventIsSentInItsContext) {
    Start();
    Update("normal");
    ASSERT_TRUE(Twirl(*session, "about-support", true));
    const std::size_t before = session->Commands().size();
    Draw({});
    const std::vector<CommandRecord> commands = session->Commands();
    ASSERT_EQ(commands.size(), before + 3) << "the context's begin, the drawing and the context's end";
    for (std::size_t i = before; i < commands.size(); ++i) {
        EXPECT_EQ(commands[i].command, PF_Cmd_EVENT);
        EXPECT_EQ(commands[i].error, 0);
        EXPECT_TRUE(commands[i].balance.IsBalanced()) << commands[i].balance.Text();
    }
    EXPECT_THAT(session->AcquiredSuites(),
                ::testing::IsSupersetOf({"DRAWBOT Draw Suite 1", "DRAWBOT Supplier Suite 1", "DRAWBOT Surface Suite 1",
                                         "PF Effect Custom UI Suite 1"}));
}

TEST_F(PanelPictureTest, AClosedGroupIsNotDrawn) {
    Start();
    Update("normal");
    const std::size_t before = session->Commands().size();
    Draw({});
    EXPECT_EQ(session->Commands().size(), before) << "so its row gets no event";
}

TEST_F(PanelPictureTest, HasTheSizeThatIsAskedFor) {
    Start();
    Update("normal");
    for (const int width : {320, 375, 600}) {
        for (const int scale : {1, 2, 3}) {
            const PanelPicture picture = Draw({.width = width, .scale = scale});
            EXPECT_EQ(picture.pixels.Width(), width * scale);
            EXPECT_EQ(picture.pixels.Height(), static_cast<int>(PanelHeight(picture.items)) * scale);
            EXPECT_EQ(At(picture.pixels, 0, 0).alpha, 255);
        }
    }
}

TEST_F(PanelPictureTest, ThemesAreDarkAndLight) {
    Start();
    Update("normal");
    const PanelPicture dark = Draw({.theme = &kDarkTheme});
    const PanelPicture light = Draw({.theme = &kLightTheme});
    const int last = dark.pixels.Height() - 1;
    EXPECT_EQ(Distance(At(dark.pixels, 5, last), {255, 0x23, 0x23, 0x23}), 0);
    EXPECT_EQ(Distance(At(light.pixels, 5, last), {255, 0xED, 0xED, 0xED}), 0);
}

TEST_F(PanelPictureTest, DisabledRowsAreFaint) {
    Start();
    const PF_Pixel ground{255, 0x23, 0x23, 0x23};
    Update("inner");
    ASSERT_TRUE(Twirl(*session, "all", true));
    const PanelPicture inner = Draw({});
    Update("normal");
    ASSERT_TRUE(Twirl(*session, "all", true));
    const PanelPicture normal = Draw({});
    EXPECT_GT(Contrast(normal, 49, ground), 120);
    EXPECT_LT(Contrast(inner, 49, ground), 100);
    EXPECT_LT(Contrast(normal, 6, ground), 90) << "the rows about the graphics processor";
}

TEST_F(PanelPictureTest, ASwatchHasItsColor) {
    Start();
    ASSERT_TRUE(session->Params().SetFromText("style/color", "#2080e0"));
    Update("normal");
    const PanelPicture picture = Draw({});
    const PanelItem* item = Find(picture.items, 19);
    const int x = static_cast<int>(PanelMetrics::ControlLeft(375)) + 16;
    EXPECT_EQ(Distance(At(picture.pixels, x, static_cast<int>(item->top) + 11), {255, 0x20, 0x80, 0xE0}), 0);
}

TEST_F(PanelPictureTest, TheDialFollowsTheAngle) {
    Start();
    const auto lineAt = [&](const char* degrees, int dx, int dy) {
        EXPECT_TRUE(session->Params().SetFromText("style/angle", degrees));
        Update("normal");
        const PanelPicture picture = Draw({});
        const PanelItem* item = Find(picture.items, 15);
        const int x = static_cast<int>(PanelMetrics::ControlLeft(375) + 25);
        const int y = static_cast<int>(item->top + PanelMetrics::kRow + PanelMetrics::kDial / 2 - 2);
        const PF_Pixel pixel = At(picture.pixels, x + dx, y + dy);
        return pixel.blue - pixel.red > 60;
    };
    EXPECT_TRUE(lineAt("0", 0, -12)) << "up";
    EXPECT_TRUE(lineAt("90", 12, 0)) << "right";
    EXPECT_TRUE(lineAt("180", 0, 12));
    EXPECT_FALSE(lineAt("180", 0, -12));
}

struct FaultRow {
    const char* call;
    PF_Err error;
    const char* sentence;
};

TEST_F(PanelPictureTest, TheEffectsFailureIsToldAndLeavesNothingOpen) {
    const FaultRow rows[] = {
        {"AcquireSuite:DRAWBOT Draw Suite", 13, "Not able to acquire AEFX Suite. (error 13, A_Err_MISSING_SUITE)"},
        {"AcquireSuite:DRAWBOT Supplier Suite", 13, "Not able to acquire AEFX Suite."},
        {"AcquireSuite:DRAWBOT Surface Suite", 13, "Not able to acquire AEFX Suite."},
        {"AcquireSuite:PF Effect Custom UI Suite", 13, "516"},
        {"PF Effect Custom UI Suite.PF_GetDrawingReference", 4, "PF_Err_OUT_OF_MEMORY"},
        {"DRAWBOT Draw Suite.GetSupplier", 3, "error 3"},
        {"DRAWBOT Draw Suite.GetSurface", 3, "error 3"},
        {"DRAWBOT Supplier Suite.NewImageFromBuffer", 4, "PF_Err_OUT_OF_MEMORY"},
        {"DRAWBOT Surface Suite.Transform", 3, "error 3"},
        {"DRAWBOT Surface Suite.DrawImage", 3, "error 3"},
        {"PF Handle Suite.host_lock_handle", 4, "PF_Err_OUT_OF_MEMORY"},
    };
    for (const FaultRow& row : rows) {
        SCOPED_TRACE(row.call);
        bool armed = false;
        Start({.fault = [&](std::string_view call) { return armed && call == row.call ? row.error : 0; }});
        Update("normal");
        ASSERT_TRUE(Twirl(*session, "about-support", true));
        const Balance before = session->Open();
        armed = true;
        const auto picture = DrawPanel(*session, {});
        armed = false;
        ASSERT_FALSE(picture);
        EXPECT_EQ(picture.error().kind, ErrorKind::kEffect);
        EXPECT_THAT(picture.error().sentence, HasSubstr(row.sentence));
        EXPECT_EQ(session->Open(), before) << session->Open().Text();
        EXPECT_THAT(session->Misbehaviour(), IsEmpty());
        session.reset();
    }
}

}  // namespace

}  // namespace umbrant::host
