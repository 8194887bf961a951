#include "vectorize/four_colour_options.h"

#include <cmath>
#include <limits>

#include "suite/base/msg_scope.h"

int &fourColourTraceLevel() {
    static int level = 0;
    return level;
}

namespace {

// Channel values are given as 0-255 or as a share below 1.0 of 255.
int channelValue(double v) {
    if (v < 1.0) v *= 255.0;
    if (!(v > double(std::numeric_limits<int>::min()))) return std::numeric_limits<int>::min();
    if (!(v < double(std::numeric_limits<int>::max()))) return std::numeric_limits<int>::max();
    return static_cast<int>(v);
}

}  // namespace

int FourColourOptions::parse(const QStringList &argv, int index, int argc) {
    argc = std::min<int>(argc, argv.size());
    int taken = 0;
    for (int i = index + 1; i < argc; ++i) {
        const QString &word = argv.at(i);
        if (word.isEmpty() || word.startsWith(QLatin1Char('-'))) break;
        MSG_Scope(MSG_Text::untranslated(word + QLatin1Char('\n')), MSG_ACTION_LOG);
        ++taken;
        if (word == QLatin1String("debug")) {
            ++fourColourTraceLevel();
            continue;
        }
        if (word == QLatin1String("nodebug")) {
            fourColourTraceLevel() = 0;
            continue;
        }
        if (word == QLatin1String("keepTexture")) {
            keepTexture = true;
            continue;
        }
        const QStringList parts = word.split(QLatin1Char(':'), Qt::SkipEmptyParts);
        if (parts.size() != 2) return -1;
        bool ok = false;
        const double value = parts.at(1).toDouble(&ok);
        if (!ok || !std::isfinite(value)) return -1;
        const QString key = parts.at(0).toLower();
        if (key == QLatin1String("dirt")) dirtArea = value;
        else if (key == QLatin1String("rgbdiff")) rgbDiff = channelValue(value);
        else if (key == QLatin1String("dark")) dark = channelValue(value);
        else if (key == QLatin1String("grey") || key == QLatin1String("gray")) grey = channelValue(value);
        else if (key == QLatin1String("white")) white = channelValue(value);
        else if (key == QLatin1String("rt")) redThreshold = channelValue(value);
        else if (key == QLatin1String("gt")) greenThreshold = channelValue(value);
        else if (key == QLatin1String("bt")) blueThreshold = channelValue(value);
        // Unknown keys are accepted so that newer style files still load.
    }
    return taken;
}

QString FourColourOptions::toText() const {
    // The flag is joined to the blue value without a blank; such a line does
    // not read back, and existing style files depend on that form.
    QString text = QString::asprintf("rgbdiff:%d dark:%d grey:%d white:%d dirt:%.1f rt:%d gt:%d bt:%d", rgbDiff,
                                     dark, grey, white, dirtArea, redThreshold, greenThreshold, blueThreshold);
    if (keepTexture) text += QLatin1String("keepTexture");
    return text;
}
