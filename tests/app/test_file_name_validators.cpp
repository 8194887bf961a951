#include <QtGui>

#include <gtest/gtest.h>

#include "app/file_name_validators.h"

// A name refuses separators, wildcards and controls; a path keeps its
// separators but refuses the rest.
TEST(FileNameValidators, NamesAndPaths) {
    const TUFileNameValidator name;
    const TUPathValidator path;
    constexpr auto ok = QValidator::Acceptable, bad = QValidator::Invalid;
    const struct {
        const char *text;
        QValidator::State asName, asPath;
    } cases[] = {{"7b-ruff.v2", ok, ok}, {"", ok, ok}, {"/home/studio/scans", bad, ok}, {"C:\\scans\\ep 1", bad, ok}, {"c:", bad, ok},
                 {"x*", bad, bad},      {"why?", bad, bad}, {"\"q\"", bad, bad}, {"<", bad, bad}, {">", bad, bad},
                 {"a|b", bad, bad},     {"tab\there", bad, bad}, {"new\nline", bad, bad}};
    for (const auto &c : cases) {
        QString text = QString::fromLatin1(c.text);
        int pos = 0;
        EXPECT_EQ(name.validate(text, pos), c.asName) << c.text;
        EXPECT_EQ(path.validate(text, pos), c.asPath) << c.text;
    }
}
