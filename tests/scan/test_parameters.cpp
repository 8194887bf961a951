// A scanner's parameter groups: ranges checked when set up, the speed presets
// and the drop colour's label.
#include <gtest/gtest.h>

#include <tuple>

#include "scan/parameters.h"

TEST(StandardParameters, InitialisersSetTheRangeOrRefuseAndLeaveTheSetUnchanged) {
    Standard_parameters p;
    ASSERT_TRUE(init_threshold_of_Standard_parameters(&p, 0, 255, 100));
    set_threshold_of_Standard_parameters(&p, 300);  // the widget keeps the range, not the setter
    EXPECT_EQ(std::tuple(p.threshold_min, p.threshold_max, p.threshold_default, threshold_of_Standard_parameters(&p)),
              std::tuple(0, 255, 100, 300));
    ASSERT_TRUE(init_gamma_of_Standard_parameters(&p, 0.01f, 3.0f, 1.0f));
    EXPECT_FLOAT_EQ(gamma_of_Standard_parameters(&p), 1.0f);
    remove_gamma_of_Standard_parameters(&p);
    EXPECT_FALSE(has_gamma_of_Standard_parameters(&p));

    // A negative bound, min not below max, a default outside.
    for (auto [min, max, value] : {std::tuple(-1, 255, 20), {10, 10, 10}, {0, 255, 256}})
        EXPECT_FALSE(init_black_point_of_Standard_parameters(&p, min, max, value)) << min << " " << max << " " << value;
    EXPECT_EQ(std::pair(has_black_point_of_Standard_parameters(&p), p.black_point_current), std::pair(false, -1));
    EXPECT_TRUE(init_black_point_of_Standard_parameters(&p, 0, 255, 255));  // bounds included
    p.locked = true;
    EXPECT_FALSE(init_white_point_of_Standard_parameters(&p, 0, 255, 235) || has_white_point_of_Standard_parameters(&p));
    EXPECT_FALSE(init_threshold_of_Standard_parameters(nullptr, 0, 255, 100));
}

TEST(StandardParameters, SpeedPresetsAndTheirState) {
    Standard_parameters p;
    // Neither normal nor fast nor custom, or a preset outside the range: refused.
    EXPECT_FALSE(init_speed_of_Standard_parameters(&p, 5, 300, 35, "Milliseconds/Line", false, 0, false, 0, false));
    EXPECT_FALSE(init_speed_of_Standard_parameters(&p, 5, 300, 35, nullptr, true, 400, true, 35, true));
    EXPECT_FALSE(has_speed_of_Standard_parameters(&p));

    ASSERT_TRUE(init_speed_of_Standard_parameters(&p, 5, 300, 35, "Milliseconds/Line", true, 70, true, 35, true));
    EXPECT_EQ(p.speed_label, QStringLiteral("Milliseconds/Line"));
    for (auto [speed, normal, fast] : {std::tuple(35, false, true), {70, true, false}, {100, false, false}}) {
        set_speed_of_Standard_parameters(&p, speed);
        EXPECT_EQ(std::tuple(speed_is_normal_of_Standard_parameters(&p), speed_is_fast_of_Standard_parameters(&p),
                             speed_is_custom_of_Standard_parameters(&p)),
                  std::tuple(normal, fast, !normal && !fast))
            << speed;
    }
    // Normal and fast equal: normal wins, and it is not custom.
    Standard_parameters e;
    ASSERT_TRUE(init_speed_of_Standard_parameters(&e, 5, 300, 50, nullptr, true, 50, true, 50, false));
    EXPECT_TRUE(e.speed_label.isNull());
    EXPECT_TRUE(speed_is_normal_of_Standard_parameters(&e) && !speed_is_custom_of_Standard_parameters(&e));
}

TEST(StandardParameters, DropColourLabelIsCutOff) {
    Standard_parameters p;
    EXPECT_TRUE(init_rgbDrop_of_Standard_parameters(&p, {}));  // empty list: no change, no error
    EXPECT_FALSE(has_rgbDrop_of_Standard_parameters(&p));
    EXPECT_TRUE(rgbDrop_of_Standard_parameters(&p).isNull());

    ASSERT_TRUE(init_rgbDrop_of_Standard_parameters(
        &p, {QStringLiteral("Red, 0, 100, 0, 100, 0, 100"), QStringLiteral("NoComma"), QStringLiteral("White,")}));
    EXPECT_EQ(rgbDrop_index_of_Standard_parameters(&p), 0);
    for (auto [index, want] : {std::pair(0, "0, 100, 0, 100, 0, 100"), {1, "NoComma"}, {2, ""}}) {
        set_rgbDrop_index_of_Standard_parameters(&p, index);
        EXPECT_EQ(rgbDrop_of_Standard_parameters(&p), QString(want)) << index;
        EXPECT_FALSE(rgbDrop_of_Standard_parameters(&p).isNull()) << index;
    }
    set_rgbDrop_index_of_Standard_parameters(&p, -1);
    EXPECT_TRUE(rgbDrop_of_Standard_parameters(&p).isNull());
}
