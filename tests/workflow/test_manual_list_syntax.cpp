// The numbers field of a manual list: names, ranges and the operator's mistakes.
#include <gtest/gtest.h>

#include "workflow/manual_list_syntax.h"

namespace {

// The names from..to joined by '|', as the table writes a list.
QString numbers(qint64 from, qint64 to) {
    QStringList out;
    for (qint64 n = from; n <= to; ++n) out.append(QString::number(n));
    return out.join('|');
}

TEST(ManualListSyntax, NamesRangesAndBadBounds) {
    struct Case {
        const char *text;
        QString names;      // joined by '|'
        const char *error;  // for a field that is refused whole
    };
    const Case cases[] = {
        {"1:10 12 7b", numbers(1, 10) + "|12|7b", ""},
        {"10:1", numbers(1, 10), ""},  // bounds in either order rise
        {"3 1:3", "3|1|2|3", ""},      // duplicates are the dialog's business
        {"1-2:5", numbers(5, 12), ""},  // dashes vanish from ranges, signs too
        {"-3:2", numbers(2, 3), ""},
        {"a-1", "a-1", ""},  // outside a range a dash is part of the name
        {"1  2", "1||2", ""},  // empty parts are names
        {"1 ", "1|", ""},
        {"1:2000", numbers(1, 1000), ""},  // at most a thousand per range
        {"1:1500 x 2001:1", numbers(1, 1000) + "|x|" + numbers(1, 1000), ""},
        {"2147483000:2147483647", numbers(2147483000, 2147483647), ""},
        {"1 2 a:3", "", "The \"From\" part of a:3 is not an integer"},
        {"3:b 4", "", "The \"To\" part of 3:b is not an integer"},
        {":4", "", "The \"From\" part of :4 is not an integer"},
        {"4:", "", "The \"To\" part of 4: is not an integer"},
        {"1:2:3", "", "The \"To\" part of 1:2:3 is not an integer"},  // only the first ':' splits
        {"1:0x10", "", "The \"To\" part of 1:0x10 is not an integer"},
        {"1:99999999999", "", "The \"To\" part of 1:99999999999 is not an integer"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.text);
        const ManualListParse result = parse_manual_list(QString::fromUtf8(c.text));
        EXPECT_EQ(result.ok, !*c.error);
        EXPECT_EQ(result.error.toStdString(), c.error);
        EXPECT_EQ(result.names.join('|').toStdString(), c.names.toStdString());
    }
}

}  // namespace
