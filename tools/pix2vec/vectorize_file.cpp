#include "tools/pix2vec/vectorize_file.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "suite/cel/celio_manager.h"
#include "suite/graphic/gr_png_export.h"
#include "suite/graphic/gr_svg_export.h"
#include "vectorize/pix2vec_options.h"
#include "vectorize/scaninfo_keywords.h"
#include "vectorize/vectorize_drawing.h"

namespace {

constexpr const char *kContext = "VectorizeDrawing";

QString tr(const char *text) { return QCoreApplication::translate(kContext, text); }

// The preview size of a PNG: the field at 100 pixels an inch (a 12-field
// drawing is 12 inches wide).
QSize previewSize(double fieldSize) {
    const int w = std::max(1, int(fieldSize * 100.0 + 0.5));
    return {w, std::max(1, int(w * 0.75 + 0.5))};
}

bool writeOutput(const GR_CompositeVectorDrawingObj &drawing, const QString &path, int version, QString *error) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("kwg")) return drawing.Store(path, version, error);
    if (suffix == QLatin1String("svg")) return GR_WriteSvg(drawing, path, error);
    return GR_WritePng(drawing, path, previewSize(drawing.info().fieldSize()), error);
}

}  // namespace

bool isDrawingOutputPath(const QString &path) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return !QFileInfo(path).fileName().startsWith(QLatin1Char('.')) &&
           (suffix == QLatin1String("kwg") || suffix == QLatin1String("svg") || suffix == QLatin1String("png"));
}

VectorizeFileResult vectorizeFile(TUPix2vecOptions &options, const QString &input, const QStringList &outputs) {
    VectorizeFileResult result;
    const QString unavailable = unavailableVectorizeStage(options);
    if (!unavailable.isEmpty()) {
        result.message = tr("%1 is not available yet.").arg(unavailable);
        return result;
    }

    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    QString comment;
    if (!CELIO_Manager::getInstance().read(input, date, CEL_Context(), reps, &comment) || reps.isEmpty()) {
        result.message = tr("Cannot load drawing file \"%1\".").arg(input) + QLatin1Char(' ') +
                         CELIO_Manager::getInstance().lastError();
        return result;
    }
    CEL_PixmapPtr image(dynamic_cast<CEL_Pixmap *>(reps.first().get()));
    if (!image) {
        result.message = tr("Cannot load drawing file \"%1\".").arg(input);
        return result;
    }

    VectorizeScanFields scan;
    scan.fileName = input;
    // A picture's comment is scan information when it says at what dpi it
    // was scanned; other programs leave other comments.
    scan.fromScanFile = !comment.isEmpty() && ScanInfoKeywords(comment).intValue(QStringLiteral("dpi:"), 0) > 0;
    scan.scanInfo = comment;
    scan.width = static_cast<uint16_t>(image->width());
    scan.height = static_cast<uint16_t>(image->height());

    Math::Matrix2x3 matrix;
    auto drawing = VectorizeDrawing(options, image, nullptr, scan, QFileInfo(input).completeBaseName(), matrix);
    if (!drawing) {
        result.message = options.registrationFailed ? tr("Optical registration failed.") : tr("Vectorization failed.");
        return result;
    }
    for (const QString &out : outputs) {
        QString error;
        if (!writeOutput(*drawing, out, options.output_version, &error)) {
            result.message = tr("Error when writing image to %1").arg(out) + QLatin1Char(' ') + error;
            return result;
        }
    }
    result.ok = true;
    result.layers = drawing->lineArt().layerCount() + drawing->colorArt().layerCount();
    result.strokes = drawing->lineArt().strokeCount() + drawing->colorArt().strokeCount();
    return result;
}
