// Reading an argument vector or an option line into TUPix2vecOptions.
#include <QRegularExpression>

#include "suite/base/tumessage.h"
#include "vectorize/option_table.h"

namespace {

// Reads the value of a plain option into its member.
OptionOutcome readPlain(OptionCursor &c, const OptionSpec &spec) {
    TUOpts &o = c.options;
    switch (spec.kind) {
    case OptionKind::SetFlag: o.*std::get<bool TUOpts::*>(spec.member) = true; break;
    case OptionKind::ClearFlag: o.*std::get<bool TUOpts::*>(spec.member) = false; break;
    case OptionKind::Count: ++(o.*std::get<int TUOpts::*>(spec.member)); break;
    case OptionKind::Real:
    case OptionKind::Int:
    case OptionKind::Text: {
        const auto value = c.next();
        if (!value) {
            if (spec.section == HELP_BUBBLE)
                TUMessage::instance()->write(TUMessage::TypeWarning,
                                             MSG_Text::untranslated(o.helpText(HELP_BUBBLE)));
            MSG_Text text(TUOpts::kContext, spec.missing);
            if (QString::fromUtf8(spec.missing).contains(QLatin1String("%1")))
                text.arg(spec.messageName ? QString::fromUtf8(spec.messageName) : c.name);
            return OptionOutcome::fail(text);
        }
        if (spec.kind == OptionKind::Text) {
            o.*std::get<QString TUOpts::*>(spec.member) = *value;
        } else if (spec.kind == OptionKind::Int) {
            double v = optionInt(*value);
            if (spec.normalise) v = spec.normalise(v);
            o.*std::get<int TUOpts::*>(spec.member) = static_cast<int>(v);
        } else {
            double v = optionReal(*value);
            if (spec.normalise) v = spec.normalise(v);
            o.*std::get<double TUOpts::*>(spec.member) = v;
        }
        break;
    }
    case OptionKind::Special: return spec.parse(c, spec);
    }
    if (spec.after) spec.after(o);
    return OptionOutcome::ok();
}

}  // namespace

void TUPix2vecOptions::parseArguments(int argc, const QStringList &argv, bool usageWhenEmpty,
                                      bool allowStrokeThickness) {
    argc = std::min<int>(argc, argv.size());
    if (argc <= 1) {
        if (usageWhenEmpty) printUsage(argc, argv, false, 0);
        return;
    }
    for (int i = 1; i < argc; ++i) {
        const QString &arg = argv.at(i);
        const OptionSpec *spec = arg.startsWith(QLatin1Char('-')) ? findPix2vecOption(arg.mid(1)) : nullptr;
        OptionOutcome outcome;
        if (!spec) {
            MSG_Text text(kContext, QT_TRANSLATE_NOOP("TUPix2vecOptions", "Incorrect Usage (\"%1\")"));
            outcome = OptionOutcome::fail(text.arg(arg));
        } else {
            OptionCursor cursor{*this, argv, argc, i, arg.mid(1), allowStrokeThickness};
            outcome = readPlain(cursor, *spec);
        }
        if (outcome.kind == OptionOutcome::Stop) return;
        if (outcome.kind == OptionOutcome::Failed) {
            lastError = outcome.error.text();
            printUsage(argc, argv, false, 0);
            ++errors;
            return;  // what came before the failure stays applied
        }
    }
}

bool TUPix2vecOptions::parseOptionLine(const QString &line, bool allowStrokeThickness) {
    QStringList argv = line.split(QRegularExpression(QStringLiteral("[ \t\r\n]+")), Qt::SkipEmptyParts);
    argv.prepend(QStringLiteral("TUEditVectorize_Error"));
    usage = false;
    parseArguments(int(argv.size()), argv, false, allowStrokeThickness);
    return errors == 0;
}
