#pragma once
// A vector drawing as a studio keeps it: the line art (ink outlines) and the
// colour art (paintable zones), their colours, and where the drawing came
// from. Stored in the native `.kwg` file.
#include <QByteArray>
#include <QString>

#include <cmath>
#include <memory>

#include "suite/graphic/gr_palette_info.h"
#include "suite/graphic/gr_vector_drawing.h"

class GR_CompositeDrawingInfo {
public:
    double fieldSize() const { return fieldSize_; }
    void SetFieldSize(double fields) { fieldSize_ = fields; }
    // The field in world units, centred on the origin: 5000 by 3750 for 12
    // fields, in proportion for others. A field size that is not a positive
    // number frames the standard sheet of 12 fields.
    Math::Box2d fieldBox() const {
        const double f = std::isfinite(fieldSize_) && fieldSize_ > 0.0 ? fieldSize_ : 12.0;
        const double halfWidth = 2500.0 * f / 12.0, halfHeight = 1875.0 * f / 12.0;
        return {-halfWidth, -halfHeight, halfWidth, halfHeight};
    }
    const QString &scanInfo() const { return scanInfo_; }
    void SetScanInfo(const QString &info) { scanInfo_ = info; }
    const QString &creator() const { return creator_; }
    void SetCreator(const QString &creator) { creator_ = creator; }

private:
    double fieldSize_ = 12.0;
    QString scanInfo_;
    QString creator_;
};

class GR_CompositeVectorDrawingObj {
public:
    // The only format this build writes and reads.
    static constexpr int kFormatVersion = 1002;

    GR_VectorDrawingObj &lineArt() { return lineArt_; }
    const GR_VectorDrawingObj &lineArt() const { return lineArt_; }
    GR_VectorDrawingObj &colorArt() { return colorArt_; }
    const GR_VectorDrawingObj &colorArt() const { return colorArt_; }
    GR_PaletteInfo &paletteInfo() { return paletteInfo_; }
    const GR_PaletteInfo &paletteInfo() const { return paletteInfo_; }
    GR_CompositeDrawingInfo &info() { return info_; }
    const GR_CompositeDrawingInfo &info() const { return info_; }

    // Writes the drawing to `path` through a temporary file in the same
    // folder, renamed over `path` only when complete. `version` 0 is the
    // current format, as is 1002 (what `-output_version 604` sets); other
    // versions are refused.
    // False with `error` set on failure; an earlier file stays as it was.
    bool Store(const QString &path, int version, QString *error = nullptr) const;
    // The file's bytes.
    QByteArray toBytes() const;

    // Null with `error` set when the file can't be read, is of another
    // version, or is not a drawing.
    static std::unique_ptr<GR_CompositeVectorDrawingObj> Load(const QString &path, QString *error = nullptr);
    static std::unique_ptr<GR_CompositeVectorDrawingObj> fromBytes(const QByteArray &bytes, QString *error = nullptr);

private:
    GR_VectorDrawingObj lineArt_, colorArt_;
    GR_PaletteInfo paletteInfo_;
    GR_CompositeDrawingInfo info_;
};
