#pragma once
// The scrolling view of a scan. The image is shown at an integer zoom, on
// white; with the space bar held the left button pans it and the middle button
// drags the zoom. Once the operator has panned, a new image keeps the position.
#include <QAbstractScrollArea>
#include <QCursor>
#include <QImage>
#include <QPoint>
#include <QPointer>
#include <QSize>

class TUScaleSlider;

class TUScrollImage : public QAbstractScrollArea {
    Q_OBJECT
public:
    // Style 0 main image, 1 small preview without interaction, 2 overview.
    TUScrollImage(int style, TUScaleSlider *slider, QWidget *parent = nullptr);

    int style() const { return m_style; }
    int scaleFactor() const { return m_scale; }
    bool moved() const { return m_moved; }
    QSize displayedSize() const { return m_size; }
    const QImage &image() const { return m_image; }
    bool borrowed() const { return m_borrowed; }

    // Takes an image (shared with its owner when `borrowed`) and shows it; a
    // null image empties the view. `fixedSize`, when valid, is the displayed size.
    void setImage(const QImage &image, bool borrowed, QSize fixedSize = QSize());
    void clear();
    // Sets the factor without redisplaying; for a view of fixed scale.
    void setScaleFactor(int factor) { m_scale = factor; }
    void setHeldKey(int key) { m_heldKey = key; }
    // Scrolls so that (x, y) of the viewport comes to the centre.
    void centreAt(int x, int y);

public slots:
    void scale(int factor);
    void scrollBarsMoved();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Where a view of a style other than 0 starts on a new image of `size`.
    virtual void position(QSize size);

private:
    void newImage(QSize fixedSize);
    void updateRanges();
    void setScrollPosition(int x, int y);
    void centreOn(QSize size);
    QSize sizeAtScale(int factor) const;
    bool pointerEvent(QEvent *event);

    int m_style;
    QImage m_image;  // 32 bits, ready to draw
    bool m_borrowed = false;
    int m_scale = 0;
    bool m_moved = false;
    QSize m_size{0, 0};
    QCursor m_hand;
    QPointer<QWidget> m_focusMemory;
    TUScaleSlider *m_slider;
    int m_heldKey = 0;

    bool m_panning = false;
    bool m_zooming = false;
    bool m_cursorSet = false;
    QPoint m_pressScroll;
    QPoint m_pressPointer;
    int m_lastY = 0;
};
