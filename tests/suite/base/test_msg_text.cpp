#include <gtest/gtest.h>

#include "suite/base/msg_text.h"

TEST(MsgText, ArgumentsFillTranslatedAndSourceAlike) {
    MSG_Text t("Scan", "Model %1 Is Not A Supported Scanner.");
    t.arg("Foo");
    EXPECT_EQ(t.text(), QStringLiteral("Model Foo Is Not A Supported Scanner."));
    EXPECT_EQ(t.source(), t.text());
    EXPECT_FALSE(t.isTranslated());
}
