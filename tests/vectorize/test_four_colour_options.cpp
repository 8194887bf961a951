#include <gtest/gtest.h>

#include "vectorize/four_colour_options.h"

namespace {

int parseWords(FourColourOptions &o, QStringList words) {
    words.prepend(QStringLiteral("-4colours"));
    return o.parse(words, 0, int(words.size()));
}

}  // namespace

TEST(FourColourOptions, ValuesBelowOneAreSharesOf255) {
    FourColourOptions o;
    EXPECT_EQ(parseWords(o, {"rt:0.9", "GT:1", "bt:0.5", "dirt:0.5", "grey:100"}), 5);
    EXPECT_EQ(o.redThreshold, 229);
    EXPECT_EQ(o.greenThreshold, 1);  // keys are not case sensitive; 1.0 is not scaled
    EXPECT_EQ(o.blueThreshold, 127);
    EXPECT_DOUBLE_EQ(o.dirtArea, 0.5);  // dirt is an area, never scaled
    EXPECT_EQ(o.grey, 100);
}

TEST(FourColourOptions, StopsAtTheNextOptionAndRefusesMalformedWords) {
    FourColourOptions o;
    EXPECT_EQ(parseWords(o, {"dark:10", "-gap", "3"}), 1);
    EXPECT_EQ(o.dark, 10);
    EXPECT_EQ(parseWords(o, {}), 0);
    EXPECT_EQ(parseWords(o, {"dark"}), -1);
    EXPECT_EQ(parseWords(o, {"dark:x"}), -1);
    EXPECT_EQ(parseWords(o, {"dark:1:2"}), -1);
    EXPECT_EQ(parseWords(o, {"unknown:4"}), 1);
}

TEST(FourColourOptions, TextReadsBackUnlessTheTextureIsKept) {
    FourColourOptions o;
    parseWords(o, {"rgbdiff:20", "white:250", "dirt:200"});
    EXPECT_EQ(o.toText(), "rgbdiff:20 dark:30 grey:220 white:250 dirt:200.0 rt:200 gt:200 bt:200");
    FourColourOptions back;
    EXPECT_EQ(parseWords(back, o.toText().split(' ')), 8);
    EXPECT_EQ(back.toText(), o.toText());

    o.keepTexture = true;
    EXPECT_TRUE(o.toText().endsWith("bt:200keepTexture"));
    EXPECT_EQ(parseWords(back, o.toText().split(' ')), -1);
}
