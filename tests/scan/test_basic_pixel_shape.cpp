// The process-wide pixel shape, from its untouched start state.
#include <gtest/gtest.h>

#include "scan/basic_pixel_shape.h"
#include "tests/support/message_capture.h"

// Each shape sets its aspect; Unset keeps the shape (Unset itself at start) but resets the aspect
// with an error; an unknown shape is kept with an assertion.
TEST(PixelShape, EachShapeSetsItsAspect)
{
    ASSERT_EQ(current_pixel_shape(), PIXEL_SHAPE_UNSET);
    ASSERT_EQ(session_pixel_shape(), PIXEL_SHAPE_UNSET);
    const std::vector<std::string> none, refused{"Illegal to set shape to Unset\n"};
    struct Step {
        int32_t set, shape;
        double aspect;
        const std::vector<std::string> &errors;
        int assertions;
    };
    for (const Step &s : {Step{PIXEL_SHAPE_UNSET, PIXEL_SHAPE_UNSET, 1.0, refused, 2},
                          Step{PIXEL_SHAPE_NARROW, 0, 0.9, none, 0}, Step{PIXEL_SHAPE_WIDE, 3, 1.0666666666666667, none, 0},
                          Step{PIXEL_SHAPE_SQUARE, 1, 1.0, none, 0}, Step{PIXEL_SHAPE_NARROW, 0, 0.9, none, 0},
                          Step{PIXEL_SHAPE_UNSET, 0, 1.0, refused, 2}, Step{7, 7, 1.0, none, 1}}) {
        MessageCapture capture;
        set_basic_pixel_shape(s.set);
        EXPECT_EQ(std::tuple(current_pixel_shape(), pixel_aspect(), capture.errors(), capture.assertions()),
                  std::tuple(s.shape, s.aspect, s.errors, s.assertions))
            << s.set;
    }
}
