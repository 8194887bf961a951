#include "app/scan_image.h"

#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QVBoxLayout>

#include "app/scale_slider.h"
#include "app/scroll_image.h"
#include "scan/drawing.h"
#include "scan/pixmap_pixmap.h"
#include "suite/base/assertion.h"

namespace {
constexpr int kOverviewScale = -3;  // 1:4
}

TUScanImage::TUScanImage(int style, QWidget *parent) : QWidget(parent), m_style(style) {
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    if (style == 0) {
        auto *row = new QHBoxLayout;
        row->addWidget(new QLabel(this), 5);
        m_slider = new TUScaleSlider(this);
        row->addWidget(m_slider);
        box->addLayout(row);
    }
    m_scroll = new TUScrollImage(style, m_slider, this);
    box->addWidget(m_scroll);
    if (m_slider) connect(m_slider, &TUScaleSlider::scaleChanged, m_scroll, &TUScrollImage::scale);
}

QSize TUScanImage::fixedSize() const {
    return m_fixedWidth >= 0 && m_fixedHeight >= 0 ? QSize(m_fixedWidth, m_fixedHeight) : QSize();
}

QImage TUScanImage::fitted(const QImage &image) const {
    const QSize size = fixedSize();
    if (!size.isValid() || image.isNull()) return image;
    // Smooth scaling of an 8-bit image would go through its colour table.
    const QImage source = image.depth() == 8 ? image.convertToFormat(QImage::Format_RGB32) : image;
    return source.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

void TUScanImage::setDrawing(Drawing *drawing) {
    LMV_pixmap *pixmap = drawing ? pixmap_of_Drawing(drawing) : nullptr;
    if (!pixmap) {
        m_scroll->clear();
        return;
    }
    // The new picture replaces the old one in place, so that the ranges are
    // not emptied in between and a panned view keeps its position.
    QImage image;
    image_of_pixmap(pixmap, &image);
    m_scroll->setImage(fitted(image), false, fixedSize());
}

void TUScanImage::copyFrom(TUScanImage *destination, TUScanImage *source) {
    LMV_ASSERT_VOID(destination && source);
    const QImage &image = source->m_scroll->image();
    if (image.isNull()) {
        destination->m_scroll->clear();
        return;
    }
    if (destination->m_style == 2) {
        destination->m_scroll->setScaleFactor(kOverviewScale);
        destination->m_scroll->setImage(image, true);
        return;
    }
    LMV_ASSERT_VOID(destination->fixedSize().isValid());
    destination->m_scroll->setImage(destination->fitted(image), false, destination->fixedSize());
}

void TUScanImage::setFixedSizeForCopies(int width, int height) {
    m_fixedWidth = width;
    m_fixedHeight = height;
}

void TUScanImage::clear() { m_scroll->clear(); }

void TUScanImage::setHeldKey(int key) {
    m_heldKey = key;
    m_scroll->setHeldKey(key);
}

void TUScanImage::centreAt(int x, int y) { m_scroll->centreAt(x, y); }
