// SPDX-License-Identifier: MIT
//
// The list of keys in windows of all sizes.
#include "viewer/window/KeysPanel.h"

#include "viewer/text/TextPainter.h"

#include <gtest/gtest.h>

namespace
{

using viewer::AreaSize;
using viewer::PageWindow;

constexpr AreaSize kWindows[] = {{320, 240}, {320, 480}, {400, 240}, {480, 270}, {800, 600}};

class KeysPanel : public testing::TestWithParam<AreaSize>
{
protected:
    void SetUp() override
    {
        if (!viewer::TextPainter().HasFont()) {
            GTEST_SKIP() << "there is no font";
        }
    }
    PageWindow::Panel panel = viewer::MakeKeysPanel(GetParam());
};

TEST_P(KeysPanel, FitsIntoTheWindow)
{
    EXPECT_LE(panel.width, GetParam().width);
    EXPECT_LE(panel.height, GetParam().height);
}

TEST_P(KeysPanel, HasNoWritingThatIsCutOffAtItsEdge)
{
    constexpr UInt8 kPaperRed = 0xFD;
    for (SInt32 v = 1; v < panel.height - 1; ++v) {
        for (const SInt32 h : {SInt32{1}, panel.width - 3, panel.width - 2}) {
            ASSERT_EQ(panel.pixels[static_cast<size_t>((v * panel.width + h) * 4 + 1)], kPaperRed)
                << h << ", " << v;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Windows, KeysPanel, testing::ValuesIn(kWindows), [](const auto& each) {
    return std::to_string(each.param.width) + "By" + std::to_string(each.param.height);
});

} // namespace
