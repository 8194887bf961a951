#include "support/line_art_inputs.h"

#include <potracelib.h>

#include <QDir>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>

#include "suite/graphic/gr_composite_drawing.h"
#include "suite/graphic/gr_drawing_access.h"
#include "suite/graphic/gr_drawing_toolbox.h"
#include "vectorize/compute_line_art.h"
#include "vectorize/peg_info.h"
#include "vectorize/pix2vec_options.h"

namespace lineart {

namespace {

constexpr int kPageWidth = 3600, kPageHeight = 2700;
// World units a pixel of a 300-dpi scan of a 12-field drawing spans.
constexpr double kUnitsPerPixel = 5000.0 / 3600.0;

BM_GreyMap inkOf(const QImage &image) {
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    BM_GreyMap ink(grey.width(), grey.height());
    for (int y = 0; y < grey.height(); ++y) {
        const uchar *from = grey.constScanLine(y);
        uint8_t *to = ink.row(y);
        for (int x = 0; x < grey.width(); ++x) to[x] = static_cast<uint8_t>(255 - from[x]);
    }
    return ink;
}

}  // namespace

BM_GreyMap pencilPage(unsigned seed) {
    std::mt19937 random(seed);
    auto uniform = [&](double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(random); };
    QImage paper(kPageWidth, kPageHeight, QImage::Format_Grayscale8);
    paper.fill(255);
    QPainter painter(&paper);
    painter.setRenderHint(QPainter::Antialiasing);
    // Long loose lines, as a character sketched in pencil: cubic runs of a
    // few inches, some of them closed shapes, pressed harder or softer.
    for (int i = 0; i < 400; ++i) {
        const QPointF start(uniform(200, kPageWidth - 200), uniform(200, kPageHeight - 200));
        QPainterPath path(start);
        QPointF at = start;
        const int pieces = 1 + int(uniform(0, 4));
        for (int p = 0; p < pieces; ++p) {
            auto near = [&](double r) {
                return QPointF(std::clamp(at.x() + uniform(-r, r), 50.0, kPageWidth - 50.0),
                               std::clamp(at.y() + uniform(-r, r), 50.0, kPageHeight - 50.0));
            };
            const QPointF c1 = near(300), c2 = near(400), end = near(350);
            path.cubicTo(c1, c2, end);
            at = end;
        }
        if (uniform(0, 1) < 0.25) path.closeSubpath();
        const int grey = int(uniform(30, 140));
        painter.setPen(QPen(QColor(grey, grey, grey), uniform(1.5, 6.0), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(path);
    }
    painter.end();
    // Grain of the paper and of the lead.
    for (int y = 0; y < kPageHeight; ++y) {
        uchar *row = paper.scanLine(y);
        for (int x = 0; x < kPageWidth; ++x) {
            const int v = row[x] + int(std::normal_distribution<double>(0, 10)(random));
            row[x] = static_cast<uchar>(std::clamp(v, 0, 255));
        }
    }
    return inkOf(paper);
}

BM_GreyMap thresholded(const BM_GreyMap &ink, double threshold) {
    const int level = std::clamp(int(threshold * 255.0), 0, 255);
    BM_GreyMap out(ink.width(), ink.height());
    for (int y = 0; y < ink.height(); ++y)
        for (int x = 0; x < ink.width(); ++x) out.row(y)[x] = ink.row(y)[x] > level ? 255 : 0;
    return out;
}

Drawing generatedPage() {
    return {"generated 300-dpi 12-field pencil page", thresholded(pencilPage(12), 0.2)};
}

std::vector<Drawing> sharedDrawings(std::string &where) {
    const char *env = std::getenv("LINEART_DIR");
    const QString dir = env && *env ? QString::fromLocal8Bit(env) : QStringLiteral(SCAN_LINEART_DIR);
    where = QDir(dir).absolutePath().toStdString();
    std::vector<Drawing> drawings;
    const QStringList files = QDir(dir).entryList({"*.png", "*.jpg"}, QDir::Files, QDir::Name);
    for (const QString &file : files) {
        const QImage image(QDir(dir).filePath(file));
        if (image.isNull()) continue;
        // Photos of paper are grey where scans are white.
        const double threshold = file.contains(QLatin1String("photo")) ? 0.55 : 0.2;
        drawings.push_back({file.toStdString(), thresholded(inkOf(image), threshold)});
    }
    return drawings;
}

namespace {

struct PotraceBitmap {
    explicit PotraceBitmap(const BM_GreyMap &bitmap) {
        constexpr int bits = 8 * int(sizeof(potrace_word));
        bm.w = bitmap.width();
        bm.h = bitmap.height();
        bm.dy = (bm.w + bits - 1) / bits;
        words.assign(size_t(bm.dy) * size_t(bm.h), 0);
        // Row r of the picture is potrace's line r, so its coordinates are
        // ours: x right, y the row.
        for (int y = 0; y < bm.h; ++y) {
            potrace_word *line = words.data() + size_t(y) * size_t(bm.dy);
            const uint8_t *from = bitmap.row(y);
            for (int x = 0; x < bm.w; ++x)
                if (from[x]) line[x / bits] |= potrace_word(1) << (bits - 1 - x % bits);
        }
        bm.map = words.data();
    }
    potrace_bitmap_t bm{};
    std::vector<potrace_word> words;
};

struct PotraceState {
    explicit PotraceState(const potrace_bitmap_t &bm) : param(potrace_param_default()) {
        state = potrace_trace(param, &bm);
    }
    ~PotraceState() {
        if (state) potrace_state_free(state);
        potrace_param_free(param);
    }
    potrace_param_t *param;
    potrace_state_t *state = nullptr;
};

// The line art of a bitmap in a fresh composite drawing, world units.
std::unique_ptr<GR_CompositeVectorDrawingObj> ourLineArt(std::unique_ptr<BM_GreyMap> work) {
    static TUPix2vecOptions options;
    currentVectorizeOptions() = &options;
    auto drawing = std::make_unique<GR_CompositeVectorDrawingObj>();
    GR_ColorDict dict(drawing->paletteInfo());
    GR_DrawingAccess access(dict);
    access.SetCurrentDrawing(&drawing->lineArt());
    const PegInfo info(false, 0, false, QString(), QStringLiteral("page"), false, uint16_t(work->width()),
                       uint16_t(work->height()), {0, 0, 0, 0}, true, 1.0, 12.0, options);
    Math::Matrix2x3 matrix;
    matrix.Scale(kUnitsPerPixel, kUnitsPerPixel);
    VectorizeColorKey key;
    ComputeLineArt(access, work, options.thresh, options.texture, options.downscale_texture, matrix, options.rmv_holes,
                   options.rmv_dirt, info, options.jag_filterl, options.expand_bitmapl, false, options.first_smoothl,
                   QStringLiteral("page"), key);
    GR_DrawingToolbox::UpgradeBeziers(access, options.fit_errorl, options.fit_degreel, false, options.smoothl, false);
    return drawing;
}

}  // namespace

Traced tracePotrace(const BM_GreyMap &bitmap) {
    const PotraceBitmap pb(bitmap);
    const PotraceState run(pb.bm);
    Traced traced;
    traced.outlines.setFillRule(Qt::OddEvenFill);
    for (const potrace_path_t *p = run.state ? run.state->plist : nullptr; p; p = p->next) {
        const potrace_curve_t &c = p->curve;
        if (c.n == 0) continue;
        ++traced.paths;
        traced.segments += c.n;
        const potrace_dpoint_t &start = c.c[c.n - 1][2];
        traced.outlines.moveTo(start.x, start.y);
        for (int i = 0; i < c.n; ++i) {
            if (c.tag[i] == POTRACE_CORNER) {
                traced.outlines.lineTo(c.c[i][1].x, c.c[i][1].y);
                traced.outlines.lineTo(c.c[i][2].x, c.c[i][2].y);
            } else {
                traced.outlines.cubicTo(c.c[i][0].x, c.c[i][0].y, c.c[i][1].x, c.c[i][1].y, c.c[i][2].x, c.c[i][2].y);
            }
        }
        traced.outlines.closeSubpath();
    }
    return traced;
}

Traced traceOurs(const BM_GreyMap &bitmap) {
    const auto drawing = ourLineArt(std::make_unique<BM_GreyMap>(bitmap));
    Traced traced;
    traced.outlines.setFillRule(Qt::OddEvenFill);
    // World to pixels with rows down: the line art maps row r to h - r.
    const double h = bitmap.height();
    auto px = [&](const Math::Point2d &p) { return QPointF(p.x / kUnitsPerPixel, h - p.y / kUnitsPerPixel); };
    for (int l = 0; l < drawing->lineArt().layerCount(); ++l) {
        for (const GR_StrokeData &s : drawing->lineArt().layer(l)->strokes()) {
            const GR_BezierPath2d &path = s.path();
            if (path.pointCount() < 2) continue;
            ++traced.paths;
            traced.segments += path.segmentCount();
            traced.outlines.moveTo(px(path.point(0)));
            if (path.degree() == 3) {
                for (int i = 1; i + 2 < path.pointCount(); i += 3)
                    traced.outlines.cubicTo(px(path.point(i)), px(path.point(i + 1)), px(path.point(i + 2)));
            } else {
                for (int i = 1; i < path.pointCount(); ++i) traced.outlines.lineTo(px(path.point(i)));
            }
            traced.outlines.closeSubpath();
        }
    }
    return traced;
}

void runPotrace(const BM_GreyMap &bitmap) {
    const PotraceBitmap pb(bitmap);
    const PotraceState run(pb.bm);
}

void runOurs(std::unique_ptr<BM_GreyMap> bitmap) { ourLineArt(std::move(bitmap)); }

Fidelity compare(const Traced &traced, const BM_GreyMap &bitmap) {
    const int w = bitmap.width(), h = bitmap.height();
    QImage rendered(w, h, QImage::Format_Grayscale8);
    rendered.fill(0);
    {
        QPainter painter(&rendered);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.fillPath(traced.outlines, QColor(255, 255, 255));
    }
    Fidelity f;
    long both = 0, either = 0;
    for (int y = 0; y < h; ++y) {
        const uchar *got = rendered.constScanLine(y);
        const uint8_t *want = bitmap.row(y);
        for (int x = 0; x < w; ++x) {
            const bool a = got[x] != 0, b = want[x] != 0;
            f.differing += a != b;
            both += a && b;
            either += a || b;
            if (x + 1 < w) f.boundary += b != (want[x + 1] != 0);
            if (y + 1 < h) f.boundary += b != (bitmap.row(y + 1)[x] != 0);
            if (b && (x == 0 || x == w - 1)) ++f.boundary;
            if (b && (y == 0 || y == h - 1)) ++f.boundary;
        }
    }
    f.iou = either ? double(both) / double(either) : 1.0;
    return f;
}

}  // namespace lineart
