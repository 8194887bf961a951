#include <gtest/gtest.h>

#include "scan/parameters.h"

TEST(StandardParameters, InitialisersSetRangeDefaultAndCurrent) {
    Standard_parameters p;
    EXPECT_FALSE(has_threshold_of_Standard_parameters(&p));
    ASSERT_TRUE(init_threshold_of_Standard_parameters(&p, 0, 255, 100));
    EXPECT_TRUE(has_threshold_of_Standard_parameters(&p));
    EXPECT_EQ(p.threshold_min, 0);
    EXPECT_EQ(p.threshold_max, 255);
    EXPECT_EQ(p.threshold_default, 100);
    EXPECT_EQ(threshold_of_Standard_parameters(&p), 100);
    set_threshold_of_Standard_parameters(&p, 300);  // the widget keeps the range, not the setter
    EXPECT_EQ(threshold_of_Standard_parameters(&p), 300);
    EXPECT_EQ(p.threshold_default, 100);

    ASSERT_TRUE(init_gamma_of_Standard_parameters(&p, 0.01f, 3.0f, 1.0f));
    EXPECT_FLOAT_EQ(gamma_of_Standard_parameters(&p), 1.0f);
    remove_gamma_of_Standard_parameters(&p);
    EXPECT_FALSE(has_gamma_of_Standard_parameters(&p));
}

TEST(StandardParameters, InitialisersRefuseBadRangesAndLeaveTheSetUnchanged) {
    Standard_parameters p;
    EXPECT_FALSE(init_black_point_of_Standard_parameters(&p, -1, 255, 20));   // negative bound
    EXPECT_FALSE(init_black_point_of_Standard_parameters(&p, 10, 10, 10));    // min not below max
    EXPECT_FALSE(init_black_point_of_Standard_parameters(&p, 0, 255, 256));   // default outside
    EXPECT_FALSE(has_black_point_of_Standard_parameters(&p));
    EXPECT_EQ(p.black_point_current, -1);
    EXPECT_TRUE(init_black_point_of_Standard_parameters(&p, 0, 255, 255));     // bounds included
    p.locked = true;
    EXPECT_FALSE(init_white_point_of_Standard_parameters(&p, 0, 255, 235));
    EXPECT_FALSE(has_white_point_of_Standard_parameters(&p));
    EXPECT_FALSE(init_threshold_of_Standard_parameters(nullptr, 0, 255, 100));
}

TEST(StandardParameters, SpeedPresetsAndTheirState) {
    Standard_parameters p;
    // Neither normal nor fast nor custom: refused.
    EXPECT_FALSE(init_speed_of_Standard_parameters(&p, 5, 300, 35, "Milliseconds/Line", false, 0, false, 0, false));
    // A preset outside the range: refused.
    EXPECT_FALSE(init_speed_of_Standard_parameters(&p, 5, 300, 35, nullptr, true, 400, true, 35, true));
    EXPECT_FALSE(has_speed_of_Standard_parameters(&p));

    ASSERT_TRUE(init_speed_of_Standard_parameters(&p, 5, 300, 35, "Milliseconds/Line", true, 70, true, 35, true));
    EXPECT_EQ(p.speed_label, QStringLiteral("Milliseconds/Line"));
    EXPECT_TRUE(speed_is_fast_of_Standard_parameters(&p));
    EXPECT_FALSE(speed_is_normal_of_Standard_parameters(&p));
    set_speed_of_Standard_parameters(&p, 70);
    EXPECT_TRUE(speed_is_normal_of_Standard_parameters(&p));
    set_speed_of_Standard_parameters(&p, 100);
    EXPECT_TRUE(speed_is_custom_of_Standard_parameters(&p));

    // Only custom: always custom.
    Standard_parameters c;
    ASSERT_TRUE(init_speed_of_Standard_parameters(&c, 5, 35000, 10, nullptr, false, 0, false, 0, true));
    EXPECT_TRUE(c.speed_label.isNull());
    EXPECT_TRUE(speed_is_custom_of_Standard_parameters(&c));

    // Normal and fast equal: normal wins, and it is not custom.
    Standard_parameters e;
    ASSERT_TRUE(init_speed_of_Standard_parameters(&e, 5, 300, 50, nullptr, true, 50, true, 50, false));
    EXPECT_TRUE(speed_is_normal_of_Standard_parameters(&e));
    EXPECT_FALSE(speed_is_custom_of_Standard_parameters(&e));
}

TEST(StandardParameters, DropColourLabelIsCutOff) {
    Standard_parameters p;
    EXPECT_TRUE(rgbDrop_of_Standard_parameters(&p).isNull());
    EXPECT_TRUE(init_rgbDrop_of_Standard_parameters(&p, {}));  // empty list: no change, no error
    EXPECT_FALSE(has_rgbDrop_of_Standard_parameters(&p));

    ASSERT_TRUE(init_rgbDrop_of_Standard_parameters(
        &p, {QStringLiteral("Red, 0, 100, 0, 100, 0, 100"), QStringLiteral("NoComma"), QStringLiteral("White,")}));
    EXPECT_EQ(rgbDrop_index_of_Standard_parameters(&p), 0);
    EXPECT_EQ(rgbDrop_of_Standard_parameters(&p), QStringLiteral("0, 100, 0, 100, 0, 100"));
    set_rgbDrop_index_of_Standard_parameters(&p, 1);
    EXPECT_EQ(rgbDrop_of_Standard_parameters(&p), QStringLiteral("NoComma"));
    set_rgbDrop_index_of_Standard_parameters(&p, 2);
    const QString white = rgbDrop_of_Standard_parameters(&p);
    EXPECT_TRUE(white.isEmpty());
    EXPECT_FALSE(white.isNull());
    set_rgbDrop_index_of_Standard_parameters(&p, -1);
    EXPECT_TRUE(rgbDrop_of_Standard_parameters(&p).isNull());
}
