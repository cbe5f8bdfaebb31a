#include "controls/buttondrawing.h"

#include <gtest/gtest.h>

namespace
{

using Kind = ctl::Stroke::Kind;

TEST(ButtonDrawing, ReadsEveryKindOfStroke)
{
    const std::vector<ctl::Stroke> expected = {
        {Kind::line, 0x2E8B57, 2.5F, {{2.5F, 8.5F}, {6, 12}, {13, 4}}},
        {Kind::curve, std::nullopt, 1, {{0, -1}, {16, 16}}},
        {Kind::disc, 0xFFFFFF, 7.5F, {{8, 8}}},
    };
    const auto drawing =
        ctl::ParseDrawing("line 2E8B57 2.5 2.5,8.5 6,12 13,4\ncurve back 1 0,-1 16,16\ndisc ffffff 7.5 8,8");
    ASSERT_TRUE(drawing);
    EXPECT_TRUE(*drawing == expected);
}

TEST(ButtonDrawing, RefusesWhatIsNoDrawing)
{
    for (const char* text :
         {"", "line", "square FFFFFF 1 1,1 2,2", "line FFFFF 1 1,1 2,2", "line -12345 1 1,1 2,2",
          "line FFFFFF x 1,1", "line FFFFFF 1 1,1", "disc FFFFFF 1", "line FFFFFF 1 1,1 2;2",
          "line FFFFFF 1 1,1 2", "line FFFFFF 1 1,1 2,", "line FFFFFF 1 1,1 2,2 end",
          "line FFFFFF 1 1,1 2,2\n\nline FFFFFF 1 1,1 2,2"})
        EXPECT_FALSE(ctl::ParseDrawing(text)) << text;
}

} // namespace
