#include "app/param_widget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

#include "scan/parameters.h"

namespace {
QString scanTr(const char *text) { return QCoreApplication::translate("Scan", text); }
}  // namespace

TUParamWidget::TUParamWidget(const QString &title, const QString &leftText, const QString &rightText,
                             QWidget *parent)
    : QFrame(parent),
      m_title(new QLabel(title, this)),
      m_value(new QLabel(this)),
      m_slider(new QSlider(Qt::Horizontal, this)),
      m_left(new QLabel(leftText, this)),
      m_right(new QLabel(rightText, this)) {
    // The set travels in the signals; spies and queued connections need its type.
    qRegisterMetaType<Standard_parameters *>("Standard_parameters*");
    setFrameShape(QFrame::StyledPanel);
    m_slider->setTracking(true);
    m_slider->setFocusPolicy(Qt::StrongFocus);
    connect(m_slider, &QSlider::valueChanged, this, &TUParamWidget::sliderValueChanged);
}

void TUParamWidget::reset() { m_slider->setValue(m_initial); }

void TUParamWidget::update(Standard_parameters *parameters, double minimum, double maximum, double value) {
    m_parameters = parameters;
    m_initial = sliderValueOf(value);
    m_slider->setRange(sliderValueOf(minimum), sliderValueOf(maximum));
    m_slider->setValue(m_initial);
    // An unchanged value emits nothing, so the label is set here as well.
    m_value->setText(valueText());
}

QString TUParamWidget::valueText() const { return QString::number(m_slider->value()); }

double TUParamWidget::valueAsDouble() const { return m_slider->value(); }

int TUParamWidget::sliderValueOf(double value) const { return static_cast<int>(value); }

void TUParamWidget::sliderValueChanged(int value) {
    m_value->setText(valueText());
    emit valueChanged(m_parameters, value);
    emit valueChanged(m_parameters, valueAsDouble());
}

TUParamStandardWidget::TUParamStandardWidget(const QString &title, const QString &leftText,
                                             const QString &rightText, QWidget *parent)
    : TUParamWidget(title, leftText, rightText, parent) {
    auto *box = new QVBoxLayout(this);
    box->addWidget(m_title, 0, Qt::AlignHCenter);
    box->addWidget(m_value, 0, Qt::AlignHCenter);
    box->addWidget(m_slider);
    auto *ends = new QHBoxLayout;
    ends->addWidget(m_left);
    ends->addStretch();
    ends->addWidget(m_right);
    box->addLayout(ends);
}

TUParamThresholdWidget::TUParamThresholdWidget(QWidget *parent)
    : TUParamStandardWidget(scanTr("Threshold"), scanTr("Dark"), scanTr("Light"), parent) {}

TUParamBlackPointWidget::TUParamBlackPointWidget(QWidget *parent)
    : TUParamStandardWidget(scanTr("Black Point"), scanTr("Dark"), scanTr("Light"), parent) {}

TUParamWhitePointWidget::TUParamWhitePointWidget(QWidget *parent)
    : TUParamStandardWidget(scanTr("White Point"), scanTr("Dark"), scanTr("Light"), parent) {}

TUParamGammaWidget::TUParamGammaWidget(QWidget *parent)
    : TUParamStandardWidget(scanTr("Gamma"), scanTr("Light"), scanTr("Dark"), parent) {}

QString TUParamGammaWidget::valueText() const { return QString::number(valueAsDouble(), 'g', 6); }

double TUParamGammaWidget::valueAsDouble() const { return m_slider->value() / 100.0; }

int TUParamGammaWidget::sliderValueOf(double value) const { return static_cast<int>(value * 100.0 + 0.05); }
