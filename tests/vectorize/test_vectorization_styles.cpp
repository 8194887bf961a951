// Reading VectOptions.conf: the two line forms, the error texts with their
// line numbers, and the default style that is always there and chosen.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include "tests/support/message_capture.h"
#include "vectorize/vectorization_styles.h"

namespace {

VectorizationStyleList read(QString text) {
    QTextStream in(&text);
    return readVectorizationStyles(in);
}

QStringList names(const std::vector<VectorizationStyle> &styles) {
    QStringList out;
    for (const VectorizationStyle &s : styles) out << s.name + (s.selected ? QStringLiteral("*") : QString());
    return out;
}

}  // namespace

TEST(VectorizationStyles, OnlyExactTagsCarryDataAndTheLastOptionsWin) {
    const VectorizationStyleList list = read(QStringLiteral(
        "# studio styles\n"
        "style_name:   Clean Line  \n"
        "options: -smooth 2\n"
        "options:  -smooth 4 -gap 1 \n"
        "style_name:NoBlank\n"
        "Style_name: Upper\n"
        " style_name: Indented\n"
        "style_name: Bare\n"
        "options:-gap 3\n"));
    EXPECT_TRUE(list.errors.isEmpty()) << list.errors.toStdString();
    ASSERT_EQ(list.styles.size(), 2u);
    // A style with no options line has empty options.
    EXPECT_EQ(QStringList({list.styles[0].name, list.styles[0].options, list.styles[1].name, list.styles[1].options}),
              QStringList({"Clean Line", "-smooth 4 -gap 1", "Bare", ""}));
    EXPECT_FALSE(list.styles[0].selected || list.styles[1].selected);
}

TEST(VectorizationStyles, ErrorsNameTheirLinesAndDropTheValue) {
    const VectorizationStyleList list = read(QStringLiteral(
        "options: -smooth 9\n"
        "style_name: A\n"
        "style_name:    \n"
        "options:    \n"
        "options: -gap 2\n"));
    EXPECT_EQ(list.errors,
              "\nOptions without style name at line 1.\nInvalid Style name at line 3.\nInvalid Option at line 4.");
    ASSERT_EQ(list.styles.size(), 1u);
    EXPECT_EQ(list.styles[0].options, "-gap 2") << "the orphan options went nowhere; the empty one kept nothing";
}

TEST(VectorizationStyles, TheDefaultStyleIsAddedOnceAndChosen) {
    std::vector<VectorizationStyle> none;
    selectDefaultStyle(none);
    EXPECT_EQ(names(none), QStringList{"Default Style*"});
    EXPECT_EQ(none[0].options, " ");

    std::vector<VectorizationStyle> some = read(QStringLiteral("style_name: A\nstyle_name: B\n")).styles;
    selectDefaultStyle(some);
    EXPECT_EQ(names(some), (QStringList{"Default Style*", "A", "B"}));

    std::vector<VectorizationStyle> own =
        read(QStringLiteral("style_name: A\nstyle_name: Default Style\noptions: -smooth 1\n")).styles;
    own[0].selected = true;
    selectDefaultStyle(own);
    EXPECT_EQ(names(own), (QStringList{"A", "Default Style*"}));
    EXPECT_EQ(own[1].options, "-smooth 1");
}

TEST(VectorizationStyles, LoadingReportsAMissingFileAndTheErrorsOfABadOne) {
    QTemporaryDir dir;
    MessageCapture capture;
    const QString missing = dir.filePath(QStringLiteral("VectOptions.conf"));
    EXPECT_EQ(names(loadVectorizationStyles(missing)), QStringList{"Default Style*"});
    EXPECT_TRUE(capture.contains(("Error opening file " + missing).toStdString()));

    QFile file(missing);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("# only a comment\nstyle_name: Ink\noptions:   \n");
    file.close();
    capture.clear();
    EXPECT_EQ(names(loadVectorizationStyles(missing)), (QStringList{"Default Style*", "Ink"}));
    EXPECT_TRUE(capture.contains(
        ("Error(s) detected while reading " + missing + ":\nInvalid Option at line 3.").toStdString()));

    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("# only comments\n# here\n");
    file.close();
    capture.clear();
    EXPECT_EQ(names(loadVectorizationStyles(missing)), QStringList{"Default Style*"});
    EXPECT_TRUE(capture.errors().empty());
}
