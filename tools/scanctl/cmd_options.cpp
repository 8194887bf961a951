// scanctl options: reads an option line as the vectorizer does and prints it
// back, or prints the help of the vectorize options.
#include <cstdio>

#include "suite/base/tumessage.h"
#include "tools/scanctl/command.h"
#include "vectorize/pix2vec_options.h"

namespace {

void printUsage(std::FILE *out) {
    std::fprintf(out,
                 "usage: scanctl options [--style-line] LINE\n"
                 "       scanctl options --help [all|io|register|filter|rgb|color|bubble|4colours]\n");
}

}  // namespace

int run_options_command(const QStringList &argsIn) {
    QStringList args = argsIn;
    if (args.isEmpty()) {
        printUsage(stderr);
        return 1;
    }
    TUPix2vecOptions options;
    if (args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        const int mask = args.size() > 1 ? pix2vecHelpSectionMask(args.at(1)) : HELP_ALL;
        if (!mask) {
            printUsage(stderr);
            return 1;
        }
        std::fputs(options.helpText(mask).toLocal8Bit().constData(), stdout);
        return 0;
    }
    const bool styleLine = args.first() == QLatin1String("--style-line");
    if (styleLine) args.removeFirst();
    options.resetDefaults();  // the line alone decides, not this machine's default style
    TUMessage::instance()->setSilent(true);
    if (!options.parseOptionLine(args.join(QLatin1Char(' ')), true)) {
        std::fputs(options.lastError.toLocal8Bit().constData(), stderr);
        return 2;
    }
    const QString line = styleLine ? options.styleLine(true)
                                   : options.optionLine(true, true, true, true, true, true, true, true, true);
    std::printf("%s\n", line.trimmed().toLocal8Bit().constData());
    return 0;
}
