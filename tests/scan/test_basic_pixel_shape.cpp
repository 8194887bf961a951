// The process-wide pixel shape. The first test needs the untouched start
// state; each test runs in its own process under ctest.
#include <gtest/gtest.h>

#include "scan/basic_pixel_shape.h"
#include "tests/support/message_capture.h"

namespace {

int assertionsIn(const MessageCapture &capture)
{
    int n = 0;
    for (const auto &line : capture.texts('I'))
        n += line.starts_with("Internal assertion error detected (");
    return n;
}

} // namespace

TEST(PixelShape, UnsetRightAfterStartStaysUnset)
{
    ASSERT_EQ(current_pixel_shape(), PIXEL_SHAPE_UNSET);
    ASSERT_EQ(session_pixel_shape(), PIXEL_SHAPE_UNSET);
    MessageCapture capture;
    set_basic_pixel_shape(PIXEL_SHAPE_UNSET);
    EXPECT_EQ(current_pixel_shape(), PIXEL_SHAPE_UNSET);
    EXPECT_EQ(pixel_aspect(), 1.0);
    EXPECT_EQ(capture.errors(), std::vector<std::string>{"Illegal to set shape to Unset\n"});
    EXPECT_EQ(assertionsIn(capture), 2);
}

TEST(PixelShape, EachShapeSetsItsAspect)
{
    MessageCapture capture;
    set_basic_pixel_shape(PIXEL_SHAPE_NARROW);
    EXPECT_EQ(current_pixel_shape(), 0);
    EXPECT_EQ(pixel_aspect(), 0.9);
    set_basic_pixel_shape(PIXEL_SHAPE_WIDE);
    EXPECT_EQ(current_pixel_shape(), 3);
    EXPECT_EQ(pixel_aspect(), 1.0666666666666667);
    set_basic_pixel_shape(PIXEL_SHAPE_SQUARE);
    EXPECT_EQ(current_pixel_shape(), 1);
    EXPECT_EQ(pixel_aspect(), 1.0);
    EXPECT_TRUE(capture.lines().empty());
}

TEST(PixelShape, UnsetKeepsTheShapeButResetsTheAspect)
{
    set_basic_pixel_shape(PIXEL_SHAPE_NARROW);
    MessageCapture capture;
    set_basic_pixel_shape(PIXEL_SHAPE_UNSET);
    EXPECT_EQ(current_pixel_shape(), PIXEL_SHAPE_NARROW);
    EXPECT_EQ(pixel_aspect(), 1.0);
    EXPECT_EQ(capture.errors().size(), 1u);
}

TEST(PixelShape, UnknownShapeIsKeptWithAnAssertion)
{
    set_basic_pixel_shape(PIXEL_SHAPE_WIDE);
    MessageCapture capture;
    set_basic_pixel_shape(7);
    EXPECT_EQ(current_pixel_shape(), 7);
    EXPECT_EQ(pixel_aspect(), 1.0);
    EXPECT_EQ(assertionsIn(capture), 1);
    EXPECT_TRUE(capture.errors().empty());
}
