#pragma once
// The sliders of the scan parameter panel. Each widget shows one value of the
// parameter set of the selected scanner and depth and reports the operator's
// moves with the set they belong to; the panel writes them into that set.
#include <QFrame>

struct Standard_parameters;
class QLabel;
class QSlider;
class QVBoxLayout;

// A framed slider of integers with a title, a value label and labels at its
// two ends; the subclasses arrange them.
class TUParamWidget : public QFrame {
    Q_OBJECT
public:
    TUParamWidget(const QString &title, const QString &leftText, const QString &rightText, QWidget *parent = nullptr);

    // Back to the value of the last update.
    virtual void reset();
    // Takes the set and puts its range and value on the slider.
    virtual void update(Standard_parameters *parameters, double minimum, double maximum, double value);
    // The value as the value label shows it.
    virtual QString valueText() const;
    // The value as the set stores it.
    virtual double valueAsDouble() const;

    Standard_parameters *parameters() const { return m_parameters; }
    QSlider *slider() const { return m_slider; }
    QLabel *valueLabel() const { return m_value; }

signals:
    void valueChanged(Standard_parameters *parameters, int value);
    void valueChanged(Standard_parameters *parameters, double value);

protected slots:
    void sliderValueChanged(int value);

protected:
    // The slider's bounds and value for a value of the set.
    virtual int sliderValueOf(double value) const;

    QLabel *m_title;
    QLabel *m_value;
    QSlider *m_slider;
    QLabel *m_left;
    QLabel *m_right;
    Standard_parameters *m_parameters = nullptr;
    int m_initial = 0;
};

// Title and value centred over the slider, the end labels under it.
class TUParamStandardWidget : public TUParamWidget {
    Q_OBJECT
public:
    TUParamStandardWidget(const QString &title, const QString &leftText, const QString &rightText,
                          QWidget *parent = nullptr);
};

class TUParamThresholdWidget : public TUParamStandardWidget {
    Q_OBJECT
public:
    explicit TUParamThresholdWidget(QWidget *parent = nullptr);
};

class TUParamBlackPointWidget : public TUParamStandardWidget {
    Q_OBJECT
public:
    explicit TUParamBlackPointWidget(QWidget *parent = nullptr);
};

class TUParamWhitePointWidget : public TUParamStandardWidget {
    Q_OBJECT
public:
    explicit TUParamWhitePointWidget(QWidget *parent = nullptr);
};

// The slider holds the gamma times 100; the labels run from light to dark,
// the other way round from the other sliders, because a higher gamma darkens.
class TUParamGammaWidget : public TUParamStandardWidget {
    Q_OBJECT
public:
    explicit TUParamGammaWidget(QWidget *parent = nullptr);
    QString valueText() const override;
    double valueAsDouble() const override;

protected:
    int sliderValueOf(double value) const override;
};
