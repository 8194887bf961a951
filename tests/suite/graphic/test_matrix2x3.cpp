// The affine map and box of the drawing library; the peg geometry tests use
// both at length, so these cases are the order of the steps and the edges.
#include <gtest/gtest.h>

#include <numbers>

#include "suite/graphic/math_matrix2x3.h"

using Math::Matrix2x3;
using Math::Point2d;

namespace {

void expectNear(Point2d got, Point2d want) {
    EXPECT_NEAR(got.x, want.x, 1e-9);
    EXPECT_NEAR(got.y, want.y, 1e-9);
}

}  // namespace

TEST(Matrix2x3, StepsHappenInTheOrderOfTheCallsAndInverseUndoesThem) {
    Matrix2x3 rotateThenMove, moveThenRotate;
    rotateThenMove.Rotate(std::numbers::pi / 2);
    rotateThenMove.Translate(10, 0);
    moveThenRotate.Translate(10, 0);
    moveThenRotate.Rotate(std::numbers::pi / 2);
    expectNear(rotateThenMove.Apply(Point2d{1, 0}), {10, 1});
    expectNear(moveThenRotate.Apply(Point2d{1, 0}), {0, 11});

    const Matrix2x3 m({2, 1}, {-1, 3}, {5, -7});
    const Point2d p{4, -2};
    expectNear(m.Inverse().Apply(m.Apply(p)), p);
    // A singular map has no inverse; the identity stands in.
    EXPECT_EQ(Matrix2x3({1, 2}, {2, 4}, {1, 1}).Inverse(), Matrix2x3());
}

TEST(Box2d, AnEmptyBoxStaysEmptyWhenEnlarged) {
    Math::Box2d box;
    box.enlarge(5);
    EXPECT_TRUE(box.isEmpty());
    box.add({1, 2});
    box.enlarge(0.5);
    EXPECT_DOUBLE_EQ(box.width(), 1);
    box.clear();
    EXPECT_TRUE(box.isEmpty());
}
