// The help text of TUPix2vecOptions and the usage lines of the command.
#include <QCoreApplication>

#include <cstdio>

#include "suite/base/tumessage.h"
#include "suite/base/whoami.h"
#include "vectorize/option_table.h"

namespace {

struct HelpSection {
    int bit;
    const char *title;
};

// The order in which the help prints its sections.
constexpr HelpSection kSections[] = {
    {HELP_IO, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Input/output options")},
    {HELP_REGISTER, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Registration options")},
    {HELP_FILTER, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Filtering options")},
    {HELP_RGB, QT_TRANSLATE_NOOP("TUPix2vecOptions", "RGB keying options")},
    {HELP_COLOR, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Color vectorization options")},
    {HELP_BUBBLE, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Bubble options")},
    {HELP_4COLOURS, QT_TRANSLATE_NOOP("TUPix2vecOptions", "4 Colour vectorization options")},
};

QString tr(const char *source) { return QCoreApplication::translate(TUPix2vecOptions::kContext, source); }

// One option's line with its defaults filled in for %1, %2, ...
QString helpLine(const OptionSpec &spec) {
    QString line = tr(spec.help);
    for (int i = 0; i < int(spec.defaults.size()); ++i) {
        const QString marker = QLatin1Char('%') + QString::number(i + 1);
        if (line.contains(marker)) line.replace(marker, optionNumber(spec.defaults[i]));
    }
    return QLatin1Char('\t') + line + QLatin1Char('\n');
}

void warn(const QString &text) { TUMessage::instance()->write(TUMessage::TypeWarning, MSG_Text::untranslated(text)); }

}  // namespace

int pix2vecHelpSectionMask(const QString &word) {
    static const std::pair<const char *, int> kTopics[] = {
        {"all", HELP_ALL},       {"io", HELP_IO},         {"color", HELP_COLOR}, {"register", HELP_REGISTER},
        {"filter", HELP_FILTER}, {"bubble", HELP_BUBBLE}, {"rgb", HELP_RGB},     {"4colours", HELP_4COLOURS},
    };
    for (const auto &[topic, bits] : kTopics)
        if (word == QLatin1String(topic)) return bits;
    return 0;
}

QString TUPix2vecOptions::helpText(int sectionMask) const {
    const QString rule = QString(71, QLatin1Char('-')) + QLatin1Char('\n');
    QString text;
    for (const HelpSection &section : kSections) {
        if (!(sectionMask & section.bit)) continue;
        text += rule + tr(section.title) + QLatin1Char('\n') + rule;
        for (const OptionSpec &spec : pix2vecOptionTable())
            if (spec.section == section.bit && spec.help) text += helpLine(spec);
    }
    if (!text.isEmpty()) text += rule;
    return text;
}

void TUPix2vecOptions::printUsage(int argc, const QStringList &argv, bool helpWanted, int sectionMask) const {
    if (!usage) return;
    whoami::printVersionInfo();
    const QString prog = argc > 0 && !argv.isEmpty() ? argv.first() : whoami::progName();
    if (helpWanted && sectionMask) {
        std::fputs(helpText(sectionMask).toLocal8Bit().constData(), stderr);
    } else if (helpWanted) {
        warn(QString::asprintf("%s: -?|-h|-help|--help     this help", qPrintable(prog)));
        warn(QString::asprintf("%s: -v|-version|--version  print version and exit", qPrintable(prog)));
        warn(QString::asprintf("%s: -help <section> to get help on a specific topic", qPrintable(prog)));
        static const char *const kTopics[] = {
            "  Topics are:",
            "    all       -- Complete help on all options",
            "    io        -- input/output options",
            "    register  -- registration options",
            "    filter    -- filtering options",
            "    rgb       -- rgb keying options",
            "    color     -- color vectorization options",
            "    bubble    -- bubble options",
            "    4colours  -- 4 Colour vectorization options",
        };
        for (const char *topic : kTopics) warn(QString::fromLatin1(topic));
    } else {
        warn(QString::asprintf("%s: Try %s -help for more information.", qPrintable(prog), qPrintable(prog)));
    }
    warn(QStringLiteral(" "));
}
