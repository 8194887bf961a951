#pragma once
// One view of a scan, in three styles: 0 the main image with its scale slider,
// panning and zoom; 1 a small whole picture of fixed size (the frame preview
// and the pan cel thumbnails); 2 the overview at 1:4, sharing the main image's
// picture.
#include <QWidget>

struct Drawing;
class TUScaleSlider;
class TUScrollImage;

class TUScanImage : public QWidget {
    Q_OBJECT
public:
    explicit TUScanImage(int style, QWidget *parent = nullptr);

    int style() const { return m_style; }
    TUScrollImage *scrollImage() const { return m_scroll; }
    TUScaleSlider *scaleSlider() const { return m_slider; }  // null but in style 0

    // Shows the drawing's pixmap; a null drawing empties the view.
    void setDrawing(Drawing *drawing);
    // Gives `destination` the picture of `source`: the overview borrows it at
    // 1:4, a view with a fixed size for copies gets a smooth copy that fits.
    static void copyFrom(TUScanImage *destination, TUScanImage *source);
    void setFixedSizeForCopies(int width, int height);
    void clear();
    // The key the operator holds (a Latin-1 character, 0 for none).
    void setHeldKey(int key);
    void centreAt(int x, int y);

private:
    // The picture as this view keeps it: fitted to the fixed size when set.
    QImage fitted(const QImage &image) const;
    QSize fixedSize() const;

    int m_style;
    TUScaleSlider *m_slider = nullptr;
    TUScrollImage *m_scroll;
    int m_fixedWidth = -1;
    int m_fixedHeight = -1;
    int m_heldKey = 0;
};
