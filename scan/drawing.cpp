#include "scan/drawing.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

#include <filesystem>
#include <system_error>

#include "scan/basic_pixel_shape.h"
#include "scan/pixmap_pixmap.h"
#include "scan/scanner_list.h"
#include "scan/vector_scaninfo.h"
#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"
#include "suite/base/osw_util.h"
#include "suite/cel/celio_manager.h"
#include "suite/cel/pixmap_format_list.h"

struct Drawing {
    QString element;
    QString name;
    QString path;
    uint8_t saved = 0;
    uint8_t rotation_set = 0;
    int32_t file_format = 24;
    int32_t pixel_shape = PIXEL_SHAPE_UNSET;
    double window_xres_inches = 0.0;
    double window_yres_inches = 0.0;
    double window_xoffset_inches = 0.0;
    int32_t scan_depth = 0;
    LMV_pixmap *pixmap = nullptr;
    LMV_scaninfo *scaninfo = nullptr;
    uint8_t write_scaninfo_file = 0;
    int32_t id = 0;
};

// The null checks of the accessors. A scan information field needs both the
// record and its scan information.
#define DRAWING_OR_RETURN(d, ret) LMV_ASSERT_RET((d) != nullptr, ret)
#define SCANINFO_OR_RETURN(d, ret) \
    DRAWING_OR_RETURN(d, ret);     \
    LMV_ASSERT_RET((d)->scaninfo != nullptr, ret)

namespace {

// Serial numbers of the records of this run; a plain counter, since records
// live on the scan thread only.
int32_t drawing_serial = 0;

// Asset type of pixmaps in the format list.
constexpr int kPixmapAssetType = 7;
// Format 2 holds grey levels; a colour picture in it is written as 24-bit colour.
constexpr int kGreyScanFormat = 2;

void report(const char *context, const char *text, const QString &path, int action) {
    MSG_Scope scope(MSG_Text(context, text).arg(path), action);
}

// The side file is a copy of the comment, for tools that don't open images.
// A side file that can't be written is passed over: the image is what counts.
void write_side_file(const QString &path, const std::string &text) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return;
    {
        QTextStream out(&file);
        out << QString::fromStdString(text);
    }
    file.commit();
}

// The previous file is not deleted before the new one exists: the new image is
// written beside it and renamed over it once complete, so a failed write
// leaves the old file as it was. What can be checked before writing is
// whether the old file can be replaced at all (its folder writable, not a
// folder itself); when it can't, the operator hears what a failed delete
// would have told, and the save goes on to fail or succeed on its own.
void check_replaceable(const QString &path) {
    const QFileInfo old(path);
    if (!old.exists() && !old.isSymLink()) return;
    if (!old.isDir() && QFileInfo(old.absolutePath()).isWritable()) return;
    report("drawing.cpp", "Unable to delete file: %1", path, 0);
}

std::filesystem::path fs_path(const QString &path) { return std::filesystem::path(path.toStdU16String()); }

// A name beside `target` that no other file has, for the image being written.
QString temporary_name_beside(const QString &target) {
    static int counter = 0;
    QString name;
    do {
        name = QStringLiteral("%1.%2-%3.part")
                   .arg(target, QString::number(QCoreApplication::applicationPid()), QString::number(++counter));
    } while (QFileInfo::exists(name));
    return name;
}

bool write_replacing(const CEL_Cel &cel, const QString &target, const QString &extension, const QString &formatName,
                     const QString &comment) {
    const QString temp = temporary_name_beside(target);
    if (!CELIO_Manager::getInstance().write(&cel, temp, extension, formatName, comment)) {
        QFile::remove(temp);
        return false;
    }
    std::error_code error;
    std::filesystem::rename(fs_path(temp), fs_path(target), error);
    if (error) {
        QFile::remove(temp);
        return false;
    }
    return true;
}

template <class Leaf>
LMV_pixmap *wrap_leaf(const CEL_RepresentationPtr &rep,
                      LMV_pixmap *(*wrap)(const UT_SharePtr<Leaf> &, int32_t, int32_t, uint8_t)) {
    const UT_SharePtr<Leaf> leaf = UT_dynamicCast<Leaf>(rep);
    return leaf ? wrap(leaf, leaf->width(), leaf->height(), 1) : nullptr;
}

// A pixmap around a representation read from a file; null for a type the
// station doesn't hold.
LMV_pixmap *pixmap_of_representation(const CEL_RepresentationPtr &rep) {
    switch (rep->type()) {
    case CEL_TYPE_RGBA16: return wrap_leaf<CEL_PixmapRGBA16>(rep, wrap_rgba16_pixmap);
    case CEL_TYPE_RGBA8: return wrap_leaf<CEL_PixmapRGBA8>(rep, wrap_rgba8_pixmap);
    case CEL_TYPE_MATTE8: return wrap_leaf<CEL_PixmapMatte8>(rep, wrap_matte8_pixmap);
    case CEL_TYPE_MATTE16: return wrap_leaf<CEL_PixmapMatte16>(rep, wrap_matte16_pixmap);
    default: return nullptr;
    }
}

// The drawing's name in a file name element-name.ext: the last two "-"
// separated fields before the extension.
QString name_from_file_name(const QString &path) {
    const QString file = QFileInfo(path).fileName();
    const qsizetype dot = file.lastIndexOf(QLatin1Char('.'));
    return (dot < 0 ? file : file.left(dot)).section(QLatin1Char('-'), -2, -1);
}

}  // namespace

const char *last_peg_side_name = "";

Drawing *create_Drawing(const QString &element, const QString &name, const QString &path) {
    auto *d = new Drawing;
    d->element = element;
    d->name = name;
    d->path = path;
    d->scaninfo = create_LMV_scaninfo();
    d->id = drawing_serial++;
    return d;
}

void destroy_Drawing(Drawing **drawing) {
    LMV_ASSERT_VOID(drawing != nullptr);
    Drawing *d = *drawing;
    DRAWING_OR_RETURN(d, );
    destroy_LMV_scaninfo(d->scaninfo);
    if (d->pixmap) release_pixmap(d->pixmap);
    delete d;
    *drawing = nullptr;
}

Drawing *load_Drawing(const QString &path, QString &scaninfo_text, CELIO_FileInfo *info) {
    const CEL_Context context(true, false, false, QFileInfo(path).absolutePath(), 0, QString(), 1.0);
    QDateTime date;
    QList<CEL_RepresentationPtr> reps;
    if (!CELIO_Manager::getInstance().read(path, date, context, reps, &scaninfo_text, info)) {
        report("Scan", "Cannot load file %1, unsupported type.", path, MSG_ACTION_ERROR);
        return nullptr;
    }
    if (reps.isEmpty()) {
        report("drawing.cpp", "Unable to read file %1.", path, MSG_ACTION_ERROR);
        return nullptr;
    }
    LMV_pixmap *pixmap = pixmap_of_representation(reps.first());
    if (!pixmap) {
        report("drawing.cpp", "Cannot load file %1, unsupported type.", path, MSG_ACTION_ERROR);
        return nullptr;
    }
    Drawing *d = create_Drawing(QString(), name_from_file_name(path), path);
    set_pixmap_of_Drawing(d, pixmap);
    return d;
}

int save_Drawing(Drawing *d) {
    DRAWING_OR_RETURN(d, 1);
    const int32_t format = d->file_format;
    const TUPixmapFormatList formats(kPixmapAssetType);
    const QString extension = formats.fileExtentionFromFormat(format);
    const QString stem = d->path + QStringLiteral("/%1-%2.").arg(d->element, d->name);
    const std::string scaninfo = LMV_scaninfo_to_str(d->scaninfo);

    if (d->write_scaninfo_file) write_side_file(oswRemapPath::RemapPath2(stem + QStringLiteral("si")), scaninfo);

    const QString file = stem + extension;
    check_replaceable(file);

    // A pixmap without pixels never reaches a save; if one does, nothing is
    // written and the caller is not told.
    const CEL_PixmapPtr rep = d->pixmap ? best_of_pixmap(d->pixmap) : CEL_PixmapPtr();
    LMV_ASSERT_RET(rep, 0);
    const int type = rep->type();
    const CEL_CelPtr cel = CEL_Cel::create(0);
    cel->setRepresentation(rep);
    cel->setDpi(dpi_of_Drawing(d));

    const bool colour = type == CEL_TYPE_RGBA16 || type == CEL_TYPE_RGBA8;
    const QString formatName =
        format == kGreyScanFormat && colour ? QStringLiteral("SCAN24") : formats.pixmapNameFromFormat(format);
    const bool written = write_replacing(*cel, oswRemapPath::RemapPath2(file), extension, formatName,
                                         QString::fromStdString(scaninfo));
    if (written) d->saved = 1;
    cel->keepOneRepresentation(type);
    return written ? 0 : 1;
}

void flip_Drawing(Drawing *d) {
    DRAWING_OR_RETURN(d, );
    if (!d->pixmap) return;
    const int32_t side = peg_side_of_Drawing(d);
    flip_pixmap(d->pixmap, side == PEG_LEFT || side == PEG_RIGHT);
}

const char *peg_side_name(int32_t side) {
    static constexpr const char *names[] = {"", "left", "top", "right", "bottom"};
    last_peg_side_name = side >= PEG_LEFT && side <= PEG_BOTTOM ? names[side] : names[PEG_NONE];
    return last_peg_side_name;
}

// ---- fields of the record --------------------------------------------------
// Plain fields are generated from one line each; the assertion of each
// accessor still names the line of its own field.

#define DRAWING_GETTER(field, type, fallback)      \
    type field##_of_Drawing(const Drawing *d) {    \
        DRAWING_OR_RETURN(d, fallback);            \
        return d->field;                           \
    }
#define DRAWING_SETTER(field, type)                     \
    void set_##field##_of_Drawing(Drawing *d, type v) { \
        DRAWING_OR_RETURN(d, );                         \
        d->field = v;                                   \
    }
#define DRAWING_FIELD(field, type, fallback) \
    DRAWING_GETTER(field, type, fallback)    \
    DRAWING_SETTER(field, type)

#define SCANINFO_GETTER(field, type, fallback)  \
    type field##_of_Drawing(const Drawing *d) { \
        SCANINFO_OR_RETURN(d, fallback);        \
        return d->scaninfo->field;              \
    }
#define SCANINFO_SETTER(field, type)                    \
    void set_##field##_of_Drawing(Drawing *d, type v) { \
        SCANINFO_OR_RETURN(d, );                        \
        d->scaninfo->field = v;                         \
    }
#define SCANINFO_FIELD(field, type, fallback) \
    SCANINFO_GETTER(field, type, fallback)    \
    SCANINFO_SETTER(field, type)

DRAWING_GETTER(name, QString, QString())
DRAWING_GETTER(path, QString, QString())

QString file_base_name_of_Drawing(const Drawing *d) {
    DRAWING_OR_RETURN(d, QString());
    // A loaded record keeps the whole file name as its path and no element.
    const QFileInfo file(d->path);
    if (d->element.isEmpty() && file.isFile()) return file.completeBaseName();
    return QStringLiteral("%1-%2").arg(d->element, d->name);
}
DRAWING_GETTER(saved, uint8_t, 0)
DRAWING_FIELD(file_format, int32_t, 24)
DRAWING_FIELD(pixel_shape, int32_t, PIXEL_SHAPE_UNSET)
DRAWING_FIELD(window_xres_inches, double, -1.0)
DRAWING_FIELD(window_yres_inches, double, -1.0)
DRAWING_FIELD(window_xoffset_inches, double, -1.0)
DRAWING_FIELD(scan_depth, int32_t, 0)
DRAWING_GETTER(pixmap, LMV_pixmap *, nullptr)
DRAWING_GETTER(scaninfo, LMV_scaninfo *, nullptr)
DRAWING_SETTER(write_scaninfo_file, uint8_t)

void set_pixmap_of_Drawing(Drawing *d, LMV_pixmap *pixmap) {
    DRAWING_OR_RETURN(d, );
    LMV_ASSERT_VOID(pixmap != nullptr);
    if (pixmap == d->pixmap) return;
    if (d->pixmap) release_pixmap(d->pixmap);
    d->pixmap = pixmap;
}

int32_t id_of_Drawing(Drawing **drawing) {
    LMV_ASSERT_RET(drawing != nullptr, -1);
    DRAWING_OR_RETURN(*drawing, -1);
    return (*drawing)->id;
}

// ---- fields of the scan information ----------------------------------------

SCANINFO_FIELD(threshold, int32_t, -1)
SCANINFO_SETTER(black_point, int32_t)
SCANINFO_SETTER(white_point, int32_t)
SCANINFO_SETTER(gamma, float)
SCANINFO_SETTER(speed, int32_t)
SCANINFO_FIELD(peg_side, int32_t, PEG_NONE)
SCANINFO_FIELD(paper_size, float, 0.0f)
SCANINFO_FIELD(dpi, float, 0.0f)
SCANINFO_SETTER(pages, float)

// An unknown state (-1) counts as pegged, as the scan information line writes it.
bool pegged_of_Drawing(const Drawing *d) {
    SCANINFO_OR_RETURN(d, false);
    return d->scaninfo->pegged != 0;
}

void set_pegged_of_Drawing(Drawing *d, bool pegged) {
    SCANINFO_OR_RETURN(d, );
    d->scaninfo->pegged = pegged ? 1 : 0;
}

void set_scan_host_of_Drawing(Drawing *d, const QString &host) {
    SCANINFO_OR_RETURN(d, );
    d->scaninfo->scan_host = host.toStdString();
}

void set_scanner_name_of_Drawing(Drawing *d, const QString &name) {
    SCANINFO_OR_RETURN(d, );
    d->scaninfo->scanner_name = name.toStdString();
}

void rotation_of_Drawing(Drawing *d, float angle, float center_x, float center_y) {
    SCANINFO_OR_RETURN(d, );
    d->scaninfo->rotation_angle = angle;
    d->scaninfo->rotation_center_x = center_x;
    d->scaninfo->rotation_center_y = center_y;
    d->rotation_set = 1;
}
