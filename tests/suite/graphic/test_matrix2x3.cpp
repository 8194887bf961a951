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

TEST(Matrix2x3, StepsHappenToThePointInTheOrderOfTheCalls) {
    Matrix2x3 rotateThenMove, moveThenRotate, moveThenScale;
    rotateThenMove.Rotate(std::numbers::pi / 2);
    rotateThenMove.Translate(10, 0);
    moveThenRotate.Translate(10, 0);
    moveThenRotate.Rotate(std::numbers::pi / 2);
    moveThenScale.Translate(1, 2);
    moveThenScale.Scale(3, -1);
    expectNear(rotateThenMove.Apply(Point2d{1, 0}), {10, 1});
    expectNear(moveThenRotate.Apply(Point2d{1, 0}), {0, 11});
    expectNear(moveThenScale.Apply(Point2d{1, 1}), {6, -3});
    // A vector is not moved, only turned and scaled.
    const Math::Vector2d v = moveThenScale.Apply(Math::Vector2d{1, 1});
    expectNear({v.x, v.y}, {3, -1});
}

TEST(Matrix2x3, MultiplyAppendsAndInverseUndoes) {
    Matrix2x3 m({2, 1}, {-1, 3}, {5, -7});
    Matrix2x3 turn;
    turn.Rotate(0.3);
    Matrix2x3 appended = m;
    appended.Multiply(turn);
    const Point2d p{4, -2};
    expectNear(appended.Apply(p), turn.Apply(m.Apply(p)));

    expectNear(m.Inverse().Apply(m.Apply(p)), p);
    expectNear((m * m.Inverse()).Apply(p), p);
    // A singular map has no inverse; the identity stands in.
    EXPECT_EQ(Matrix2x3({1, 2}, {2, 4}, {1, 1}).Inverse(), Matrix2x3());
}

TEST(Box2d, EnlargeGrowsEverySideAndClearEmpties) {
    Math::Box2d box;
    box.enlarge(5);
    EXPECT_TRUE(box.isEmpty());
    box.add({1, 2});
    box.add({3, 6});
    box.enlarge(0.5);
    expectNear({box.x0, box.y0}, {0.5, 1.5});
    expectNear({box.x1, box.y1}, {3.5, 6.5});
    EXPECT_DOUBLE_EQ(box.width(), 3);
    box.clear();
    EXPECT_TRUE(box.isEmpty());
}
