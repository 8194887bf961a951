// The numbers field of a manual list: names, ranges and the operator's mistakes.
#include <gtest/gtest.h>

#include <ostream>

#include "workflow/manual_list_syntax.h"

// Failures show the names, not their bytes.
inline void PrintTo(const QStringList &list, std::ostream *os) { *os << '"' << list.join("|").toStdString() << '"'; }

namespace {

QStringList numbers(int from, int to) {
    QStringList out;
    for (int n = from; n <= to; ++n) out.append(QString::number(n));
    return out;
}

QStringList parsed(const char *text) {
    const ManualListParse result = parse_manual_list(QString::fromUtf8(text));
    EXPECT_TRUE(result.ok) << text << ": " << result.error.toStdString();
    EXPECT_TRUE(result.error.isEmpty());
    return result.names;
}

}  // namespace

TEST(ManualListSyntax, RangesAndNamesKeepTheirOrder) {
    EXPECT_EQ(parsed("1:10 12 7b"), (numbers(1, 10) + QStringList{"12", "7b"}));
    // Bounds in either order give the numbers rising.
    EXPECT_EQ(parsed("10:1"), numbers(1, 10));
    EXPECT_EQ(parsed("5:5"), QStringList{"5"});
    // Duplicates are the dialog's business.
    EXPECT_EQ(parsed("3 1:3"), (QStringList{"3", "1", "2", "3"}));
}

TEST(ManualListSyntax, DashesVanishFromRangesOnly) {
    // "1-2:5" reads as 12 to 5.
    EXPECT_EQ(parsed("1-2:5"), numbers(5, 12));
    // No sign survives either: "-3:2" is 3 down to 2.
    EXPECT_EQ(parsed("-3:2"), numbers(2, 3));
    // Outside a range a dash is part of the name.
    EXPECT_EQ(parsed("a-1"), QStringList{"a-1"});
}

TEST(ManualListSyntax, EmptyPartsAreNames) {
    EXPECT_EQ(parsed("1  2"), (QStringList{"1", "", "2"}));
    EXPECT_EQ(parsed("1 "), (QStringList{"1", ""}));
}

TEST(ManualListSyntax, OneRangeGivesAtMostAThousandNames) {
    const QStringList names = parsed("1:2000");
    ASSERT_EQ(names.size(), 1000);
    EXPECT_EQ(names.front(), "1");
    EXPECT_EQ(names.back(), "1000");
    // The cap is per range, and a range ending at the largest integer stops.
    EXPECT_EQ(parsed("1:1500 x 2001:1").size(), 2001);
    EXPECT_EQ(parsed("2147483000:2147483647").back(), "2147483647");
}

TEST(ManualListSyntax, BadBoundsRejectTheWholeField) {
    struct Case {
        const char *text;
        const char *error;
    } cases[] = {
        {"1 2 a:3", "The \"From\" part of a:3 is not an integer"},
        {"3:b 4", "The \"To\" part of 3:b is not an integer"},
        {":4", "The \"From\" part of :4 is not an integer"},
        {"4:", "The \"To\" part of 4: is not an integer"},
        // Only the first ":" splits; the rest belongs to the upper bound.
        {"1:2:3", "The \"To\" part of 1:2:3 is not an integer"},
        {"1:0x10", "The \"To\" part of 1:0x10 is not an integer"},
        {"1:99999999999", "The \"To\" part of 1:99999999999 is not an integer"},
    };
    for (const Case &c : cases) {
        const ManualListParse result = parse_manual_list(QString::fromUtf8(c.text));
        EXPECT_FALSE(result.ok) << c.text;
        EXPECT_TRUE(result.names.isEmpty()) << c.text;
        EXPECT_EQ(result.error.toStdString(), c.error);
    }
}
