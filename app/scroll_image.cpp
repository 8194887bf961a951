#include "app/scroll_image.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSlider>

#include "app/cursor_resource.h"
#include "app/scale_slider.h"
#include "app/scroll_image_painter.h"

namespace {
constexpr int kZoomStep = 25;  // pixels of a zoom drag for one step of the slider

// The displayed length of `length` image pixels at a zoom factor.
int scaled_length(int length, int factor) {
    const double f = factor < 0 ? 1.0 / (1 - factor) : factor + 1.0;
    return static_cast<int>(length * f);
}
}  // namespace

TUScrollImage::TUScrollImage(int style, TUScaleSlider *slider, QWidget *parent)
    : QAbstractScrollArea(parent), m_style(style), m_hand(RM_LoadCursor(QStringLiteral("handopen.png"), 7, 6)),
      m_slider(slider) {
    const Qt::ScrollBarPolicy bars = style == 1 ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAlwaysOn;
    setHorizontalScrollBarPolicy(bars);
    setVerticalScrollBarPolicy(bars);
    QPalette background = viewport()->palette();
    background.setColor(QPalette::Window, Qt::white);
    viewport()->setPalette(background);
    viewport()->setAutoFillBackground(true);
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &TUScrollImage::scrollBarsMoved);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &TUScrollImage::scrollBarsMoved);
    if (style != 1) {
        installEventFilter(this);
        viewport()->installEventFilter(this);
    }
}

QSize TUScrollImage::sizeAtScale(int factor) const {
    return {scaled_length(m_image.width(), factor), scaled_length(m_image.height(), factor)};
}

void TUScrollImage::setImage(const QImage &image, bool borrowed, QSize fixedSize) {
    m_image = image.isNull() ? QImage() : image.convertToFormat(QImage::Format_RGB32);
    m_borrowed = borrowed && !m_image.isNull();
    newImage(fixedSize);
}

void TUScrollImage::clear() {
    m_image = QImage();
    m_borrowed = false;
    m_size = QSize(0, 0);
    updateRanges();
    viewport()->update();
}

void TUScrollImage::newImage(QSize fixedSize) {
    const QSize size = fixedSize.isValid() ? fixedSize : sizeAtScale(m_scale);
    m_size = m_image.isNull() ? QSize(0, 0) : size;
    // The ranges come first, so that the position below is not cut to the old ones.
    updateRanges();
    if (!m_moved) {
        if (m_style != 0)
            position(m_size);
        else
            centreOn(m_size);
    }
    viewport()->update();
}

// The overview opens on the sheet's middle, as the main image does.
void TUScrollImage::position(QSize size) { centreOn(size); }

void TUScrollImage::centreOn(QSize size) {
    setScrollPosition(size.width() / 2 - viewport()->width() / 2, size.height() / 2 - viewport()->height() / 2);
}

void TUScrollImage::setScrollPosition(int x, int y) {
    horizontalScrollBar()->setValue(x);
    verticalScrollBar()->setValue(y);
}

void TUScrollImage::updateRanges() {
    const bool updates = viewport()->updatesEnabled();
    viewport()->setUpdatesEnabled(false);
    horizontalScrollBar()->setUpdatesEnabled(false);
    verticalScrollBar()->setUpdatesEnabled(false);
    const QSize view = viewport()->size();
    const int pageX = std::min(m_size.width(), view.width());
    const int pageY = std::min(m_size.height(), view.height());
    horizontalScrollBar()->setPageStep(pageX);
    horizontalScrollBar()->setRange(0, m_size.width() - pageX);
    verticalScrollBar()->setPageStep(pageY);
    verticalScrollBar()->setRange(0, m_size.height() - pageY);
    horizontalScrollBar()->setUpdatesEnabled(true);
    verticalScrollBar()->setUpdatesEnabled(true);
    viewport()->setUpdatesEnabled(updates);
}

void TUScrollImage::scale(int factor) {
    if (factor == m_scale) return;
    m_scale = factor;
    if (m_image.isNull()) return;
    // Keep the part of the image at the centre of the view there.
    const QSize view = viewport()->size();
    const double fx = m_size.width() > 0
                          ? (horizontalScrollBar()->value() + std::min(view.width(), m_size.width()) / 2.0) /
                                m_size.width()
                          : 0.5;
    const double fy = m_size.height() > 0
                          ? (verticalScrollBar()->value() + std::min(view.height(), m_size.height()) / 2.0) /
                                m_size.height()
                          : 0.5;
    m_size = sizeAtScale(factor);
    updateRanges();
    setScrollPosition(static_cast<int>(fx * m_size.width() - view.width() / 2.0),
                      static_cast<int>(fy * m_size.height() - view.height() / 2.0));
    viewport()->update();
}

void TUScrollImage::centreAt(int x, int y) {
    setScrollPosition(horizontalScrollBar()->value() + x - viewport()->width() / 2,
                      verticalScrollBar()->value() + y - viewport()->height() / 2);
}

void TUScrollImage::scrollBarsMoved() { viewport()->update(); }

void TUScrollImage::scrollContentsBy(int, int) { viewport()->update(); }

void TUScrollImage::resizeEvent(QResizeEvent *event) {
    QAbstractScrollArea::resizeEvent(event);
    updateRanges();
}

void TUScrollImage::paintEvent(QPaintEvent *) {
    QPainter painter(viewport());
    const QPoint origin(horizontalScrollBar()->value(), verticalScrollBar()->value());
    // A fixed size holds an image made to fit it: no zoom on top.
    const int factor = m_size == sizeAtScale(m_scale) ? m_scale : 0;
    painter.drawImage(0, 0, compose_scroll_view(m_image, factor, origin, viewport()->size(), m_size));
}

bool TUScrollImage::eventFilter(QObject *watched, QEvent *event) {
    if (watched == this) {
        if (event->type() == QEvent::Enter) {
            m_focusMemory = QApplication::focusWidget();
            setFocus(Qt::MouseFocusReason);
        } else if (event->type() == QEvent::Leave && hasFocus()) {
            clearFocus();
            if (m_focusMemory) m_focusMemory->setFocus(Qt::MouseFocusReason);
        }
        return false;
    }
    if (watched == viewport()) return pointerEvent(event);
    return false;
}

bool TUScrollImage::pointerEvent(QEvent *event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (m_heldKey == ' ') {
            m_panning = mouse->button() == Qt::LeftButton;
            m_zooming = mouse->button() == Qt::MiddleButton;
            if ((m_panning || m_zooming) && !m_cursorSet) {
                QApplication::setOverrideCursor(m_hand);
                m_cursorSet = true;
            }
        }
        m_pressScroll = QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
        m_pressPointer = mouse->position().toPoint();
        m_lastY = m_pressPointer.y();
        return m_panning || m_zooming;
    }
    case QEvent::MouseButtonRelease: {
        const bool handled = m_panning || m_zooming;
        m_panning = m_zooming = false;
        if (m_cursorSet) {
            QApplication::restoreOverrideCursor();
            m_cursorSet = false;
        }
        return handled;
    }
    case QEvent::MouseMove: {
        const QPoint at = static_cast<QMouseEvent *>(event)->position().toPoint();
        if (m_panning) {
            const QPoint by = m_pressPointer - at;
            setScrollPosition(m_pressScroll.x() + by.x(), m_pressScroll.y() + by.y());
            m_moved = true;
            return true;
        }
        if (m_zooming) {
            const int steps = (at.y() - m_lastY) / kZoomStep;
            if (steps != 0 && m_slider) {
                // Dragging down zooms in.
                QSlider *slider = m_slider->slider();
                slider->setValue(slider->value() + steps);
                m_lastY = at.y();
            }
            return true;
        }
        return false;
    }
    default:
        return false;
    }
}
