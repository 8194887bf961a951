#include "vectorize/pix2vec_options.h"

#include <QFile>

#include "suite/base/osw_util.h"
#include "vectorize/option_table.h"
#include "vectorize/who_identity.h"

namespace {

// Sets a plain member to the default of its table entry.
void resetMember(TUOpts &o, const OptionSpec &spec) {
    std::visit(
        [&](auto member) {
            using M = decltype(member);
            if constexpr (std::is_same_v<M, QString TUOpts::*>)
                o.*member = QString::fromUtf8(spec.defaultText);
            else if constexpr (!std::is_same_v<M, std::monostate>)
                o.*member = static_cast<std::remove_reference_t<decltype(o.*member)>>(spec.defaults[0]);
        },
        spec.member);
}

void resetEntry(TUOpts &o, const OptionSpec &spec) {
    if (spec.reset) spec.reset(o, spec);
    else resetMember(o, spec);
}

// A default style longer than this is not a style.
constexpr qint64 kMaxStyleLine = 99'999'999;

}  // namespace

TUPix2vecOptions::TUPix2vecOptions() {
    for (const OptionSpec &spec : pix2vecOptionTable())
        if (spec.constructorOnly) resetEntry(*this, spec);
    resetDefaults();

    QFile style(oswRemapPath::RemapPath(defaultStylePath()));
    if (!style.open(QIODevice::ReadOnly | QIODevice::Text)) return;  // no default style: the defaults stand
    QString line = QString::fromUtf8(style.readLine(kMaxStyleLine));
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r'))) line.chop(1);
    if (!line.trimmed().isEmpty()) parseOptionLine(line, true);
}

TUPix2vecOptions::~TUPix2vecOptions() = default;

void TUPix2vecOptions::resetDefaults() {
    for (const OptionSpec &spec : pix2vecOptionTable())
        if (!spec.constructorOnly) resetEntry(*this, spec);
    // Members that no option names alone.
    errors = 0;
    help = 0;
    noughts = false;
    matteTarget = 0;
    pixelOffsetX = pixelOffsetY = 0;
    palettizer = nullptr;
    imageTransformProvider = nullptr;
    registrationFailed = false;
    force_unamed_palette_for_texture = WHO_Identity::package() == 2;
}

TUPix2vecOptions *&currentVectorizeOptions() {
    static TUPix2vecOptions processOptions;
    static TUPix2vecOptions *current = &processOptions;
    return current;
}

QString defaultStylePath() {
    return BAPP_SharedSpecialFolders_instance().appDataFolder() + QStringLiteral("/default.vof");
}
