#include "app/param_rgb_drop_widget.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

#include "scan/parameters.h"

TUParamRgbDropWidget::TUParamRgbDropWidget(QWidget *parent) : QFrame(parent), m_colours(new QComboBox(this)) {
    qRegisterMetaType<Standard_parameters *>("Standard_parameters*");
    setFrameShape(QFrame::StyledPanel);
    auto *box = new QVBoxLayout(this);
    box->addWidget(new QLabel(QCoreApplication::translate("Scan", "Drop Colour"), this), 0, Qt::AlignHCenter);
    box->addWidget(m_colours);
    connect(m_colours, &QComboBox::currentIndexChanged, this, &TUParamRgbDropWidget::newRgbDrop);
}

void TUParamRgbDropWidget::update(Standard_parameters *parameters, const QStringList &colours, int index) {
    m_parameters = parameters;
    m_colours->clear();
    m_colours->addItems(colours);
    m_colours->setCurrentIndex(index < 0 ? -1 : index);
}

void TUParamRgbDropWidget::newRgbDrop(int index) {
    // Clearing the box passes through "nothing selected", which is no choice.
    if (index < 0) return;
    emit rgbChanged(m_parameters, index);
}
