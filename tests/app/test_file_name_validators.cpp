#include <QtWidgets>
#include <QtTest>

#include <gtest/gtest.h>

#include "app/file_name_validators.h"

namespace {

QValidator::State check(const QValidator &v, QString text) {
    int pos = 0;
    return v.validate(text, pos);
}

}  // namespace

TEST(FileNameValidators, NameRefusesSeparatorsWildcardsAndControls) {
    TUFileNameValidator v;
    EXPECT_EQ(check(v, QStringLiteral("7b-ruff.v2")), QValidator::Acceptable);
    EXPECT_EQ(check(v, QString()), QValidator::Acceptable);
    for (const char *bad : {"a/b", "a\\b", "c:", "x*", "why?", "\"q\"", "<", ">", "a|b", "tab\there"})
        EXPECT_EQ(check(v, QString::fromLatin1(bad)), QValidator::Invalid) << bad;
}

TEST(FileNameValidators, PathKeepsSeparatorsButRefusesWildcards) {
    TUPathValidator v;
    EXPECT_EQ(check(v, QStringLiteral("/home/studio/scans")), QValidator::Acceptable);
    EXPECT_EQ(check(v, QStringLiteral("C:\\scans\\ep 1")), QValidator::Acceptable);
    for (const char *bad : {"/tmp/*", "a?", "\"x\"", "<", "a|b", "new\nline"})
        EXPECT_EQ(check(v, QString::fromLatin1(bad)), QValidator::Invalid) << bad;
}

TEST(FileNameValidators, TypingIntoALineEditDropsRefusedCharacters) {
    QLineEdit edit;
    edit.setValidator(new TUFileNameValidator(&edit));
    QTest::keyClicks(&edit, QStringLiteral("12/a*b"));
    EXPECT_EQ(edit.text(), QStringLiteral("12ab"));
}
