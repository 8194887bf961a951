#include "app/scale_slider.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

namespace {
constexpr int kOneToOne = 16;
}

TUScaleSlider::TUScaleSlider(QWidget *parent)
    : QWidget(parent), m_label(new QLabel(labelText(kOneToOne), this)), m_slider(new QSlider(Qt::Horizontal, this)) {
    m_slider->setRange(1, 31);
    m_slider->setValue(kOneToOne);
    m_slider->setTracking(false);
    m_slider->setFocusPolicy(Qt::StrongFocus);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_label);
    row->addWidget(m_slider);
    connect(m_slider, &QSlider::sliderMoved, this, &TUScaleSlider::moved);
    connect(m_slider, &QSlider::valueChanged, this, &TUScaleSlider::newValue);
}

QString TUScaleSlider::labelText(int value) {
    const QString scale = QCoreApplication::translate("Scan", "Scale: ");
    if (value >= kOneToOne) return scale + QString::number(value - 15) + QLatin1String(":1");
    return scale + QLatin1String("1:") + QString::number(17 - value);
}

void TUScaleSlider::newValue(int value) {
    m_label->setText(labelText(value));
    emit scaleChanged(value - kOneToOne);
}

void TUScaleSlider::moved(int value) { m_label->setText(labelText(value)); }
