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

// Each shape sets its aspect; Unset keeps the shape but resets the aspect
// with an error, and an unknown shape is kept with an assertion.
TEST(PixelShape, EachShapeSetsItsAspect)
{
    struct Step {
        int32_t set, shape;
        double aspect;
        size_t errors;
        int assertions;
    };
    for (const Step &s : {Step{PIXEL_SHAPE_NARROW, 0, 0.9, 0, 0}, Step{PIXEL_SHAPE_WIDE, 3, 1.0666666666666667, 0, 0},
                          Step{PIXEL_SHAPE_SQUARE, 1, 1.0, 0, 0}, Step{PIXEL_SHAPE_NARROW, 0, 0.9, 0, 0},
                          Step{PIXEL_SHAPE_UNSET, 0, 1.0, 1, 2}, Step{7, 7, 1.0, 0, 1}}) {
        MessageCapture capture;
        set_basic_pixel_shape(s.set);
        EXPECT_EQ(current_pixel_shape(), s.shape) << s.set;
        EXPECT_EQ(pixel_aspect(), s.aspect) << s.set;
        EXPECT_EQ(capture.errors().size(), s.errors) << s.set;
        EXPECT_EQ(assertionsIn(capture), s.assertions) << s.set;
    }
}
