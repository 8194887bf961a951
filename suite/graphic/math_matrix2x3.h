#pragma once
// An affine map of the plane: a 2x2 linear part (columns e and f) and a
// translation. The building operations append: after m.Translate(t), m maps a
// point p to m_before(p) + t, so a chain of calls reads in the order in which
// the steps happen to the point.
#include <cmath>

#include "suite/graphic/math_geometry.h"

namespace Math {

class Matrix2x3 {
public:
    // The identity.
    Matrix2x3() = default;
    Matrix2x3(const Vector2d &column0, const Vector2d &column1, const Vector2d &translation)
        : a_(column0.x), b_(column0.y), c_(column1.x), d_(column1.y), tx_(translation.x), ty_(translation.y) {}

    Point2d Apply(const Point2d &p) const { return {a_ * p.x + c_ * p.y + tx_, b_ * p.x + d_ * p.y + ty_}; }
    // The linear part only: a vector has no position.
    Vector2d Apply(const Vector2d &v) const { return {a_ * v.x + c_ * v.y, b_ * v.x + d_ * v.y}; }

    // The map that first applies `first`, then this.
    Matrix2x3 operator*(const Matrix2x3 &first) const {
        Matrix2x3 r;
        r.a_ = a_ * first.a_ + c_ * first.b_;
        r.b_ = b_ * first.a_ + d_ * first.b_;
        r.c_ = a_ * first.c_ + c_ * first.d_;
        r.d_ = b_ * first.c_ + d_ * first.d_;
        r.tx_ = a_ * first.tx_ + c_ * first.ty_ + tx_;
        r.ty_ = b_ * first.tx_ + d_ * first.ty_ + ty_;
        return r;
    }

    // Appends `then` after what this map already does.
    void Multiply(const Matrix2x3 &then) { *this = then * *this; }
    void Translate(const Vector2d &t) { Translate(t.x, t.y); }
    void Translate(double x, double y) {
        tx_ += x;
        ty_ += y;
    }
    void Scale(double sx, double sy) { Multiply(Matrix2x3({sx, 0.0}, {0.0, sy}, {})); }
    // Counter-clockwise with y upward, in radians.
    void Rotate(double radians) {
        const double cs = std::cos(radians), sn = std::sin(radians);
        Multiply(Matrix2x3({cs, sn}, {-sn, cs}, {}));
    }

    double Determinant() const { return a_ * d_ - b_ * c_; }
    // The inverse map; a singular matrix gives the identity, as there is no
    // better answer for a map that folds the plane onto a line.
    Matrix2x3 Inverse() const {
        const double det = Determinant();
        if (det == 0.0 || !std::isfinite(det)) return {};
        Matrix2x3 r({d_ / det, -b_ / det}, {-c_ / det, a_ / det}, {});
        const Vector2d t = r.Apply(Vector2d{tx_, ty_});
        r.tx_ = -t.x;
        r.ty_ = -t.y;
        return r;
    }

    Vector2d column0() const { return {a_, b_}; }
    Vector2d column1() const { return {c_, d_}; }
    Vector2d translation() const { return {tx_, ty_}; }

    friend bool operator==(const Matrix2x3 &, const Matrix2x3 &) = default;

private:
    double a_ = 1.0, b_ = 0.0, c_ = 0.0, d_ = 1.0, tx_ = 0.0, ty_ = 0.0;
};

}  // namespace Math
