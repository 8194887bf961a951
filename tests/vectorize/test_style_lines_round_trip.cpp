// Style lines read back to themselves: each style of a studio's
// VectOptions.conf through `scanctl options --style-line`, and a record
// written with writeStyleFile and read again.
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

#include "support/run_program.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/vectorization_styles.h"

namespace {

constexpr const char *kStudioStyles =
    "# Styles of the studio\n"
    "style_name: Clean Line\n"
    "options: -thresh 0.6 -gap 3 -fit_errorl 0.8 -smoothl 2\n"
    "style_name: Pencil\n"
    "options: -pencil -threshl 0.35 -rmv_dirtl 4 -no_normalize\n"
    "style_name: Colour Art\n"
    "options: -rgb -threshrgb 0.2 -fit_errorc 1.5 -rmv_holesc 12 -min_radius 1 -max_radius 40\n"
    "style_name: Pegs Kept\n"
    "options: -register 2 -registration_looseness_factor 3 -pegpitch 8 -rmargin 1.25\n";

// The record a style line gives, from the defaults alone.
TUPix2vecOptions parsed(const QString &line) {
    TUPix2vecOptions options;
    options.resetDefaults();
    EXPECT_TRUE(options.parseOptionLine(line, true)) << line.toStdString() << ": " << options.lastError.toStdString();
    return options;
}

QString everything(const TUPix2vecOptions &o) { return o.optionLine(true, true, true, true, true, true, true, true, true); }

TEST(StyleLines, EachStudioStylePrintedByScanctlParsesBackToItself) {
    QString text = QString::fromLatin1(kStudioStyles);
    QTextStream in(&text);
    const VectorizationStyleList list = readVectorizationStyles(in);
    ASSERT_TRUE(list.errors.isEmpty()) << list.errors.toStdString();
    ASSERT_EQ(list.styles.size(), 4u);
    for (const VectorizationStyle &style : list.styles) {
        const ProcessResult printed =
            run_program(QStringLiteral(SCANCTL_PATH), QStringList{"options", "--style-line"} + style.options.split(' ', Qt::SkipEmptyParts));
        ASSERT_EQ(printed.status, 0) << style.name.toStdString() << ": " << printed.err.toStdString();
        const QString line = printed.out.trimmed();
        EXPECT_EQ(parsed(line).styleLine(true).trimmed(), line) << style.name.toStdString();
        EXPECT_EQ(everything(parsed(line)), everything(parsed(style.options))) << style.name.toStdString();
    }
}

TEST(StyleLines, AWrittenStyleFileReadsBackToTheSameRecord) {
    QTemporaryDir dir;
    const TUPix2vecOptions original = parsed(QStringLiteral("-rgb -thresh 0.45 -gap 5 -smoothc 3 -rmargin 1.5"));
    const QString path = dir.filePath(QStringLiteral("style.vof"));
    ASSERT_TRUE(original.writeStyleFile(path, true));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const QString written = QString::fromUtf8(file.readAll()).trimmed();
    EXPECT_EQ(everything(parsed(written)), everything(original));
    EXPECT_FALSE(original.writeStyleFile(dir.filePath(QStringLiteral("missing/style.vof")), true));
}

}  // namespace
