#pragma once
// The zoom of the main image: a label "Scale: a:b" beside a slider of 31 steps,
// 16 being 1:1. The label follows a drag at once; the scale changes only when
// the slider is let go.
#include <QWidget>

class QLabel;
class QSlider;

class TUScaleSlider : public QWidget {
    Q_OBJECT
public:
    explicit TUScaleSlider(QWidget *parent = nullptr);

    // "Scale: 1:16" at 1, "Scale: 1:1" at 16, "Scale: 16:1" at 31.
    static QString labelText(int value);

    QSlider *slider() const { return m_slider; }
    QLabel *label() const { return m_label; }

signals:
    // The scroll image's factor: the slider's value less 16.
    void scaleChanged(int factor);

public slots:
    void newValue(int value);
    void moved(int value);

private:
    QLabel *m_label;
    QSlider *m_slider;
};
