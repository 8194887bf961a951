#include "app/param_speed_widget.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include "scan/parameters.h"

namespace {
QString scanTr(const char *text) { return QCoreApplication::translate("Scan", text); }
}  // namespace

TUParamSpeedWidget::TUParamSpeedWidget(QWidget *parent)
    : TUParamWidget(scanTr("Speed"), scanTr("Fast"), scanTr("Slow"), parent),
      m_modeBox(new QComboBox(this)),
      m_unit(new QLabel(this)) {
    m_modeBox->setMinimumHeight(20);
    connect(m_modeBox, &QComboBox::currentIndexChanged, this, &TUParamSpeedWidget::newSpeed);

    auto *box = new QVBoxLayout(this);
    auto *head = new QHBoxLayout;
    head->addStretch(10);
    head->addWidget(m_title);
    head->addStretch(3);
    head->addWidget(m_modeBox);
    box->addLayout(head);
    box->addWidget(m_value, 0, Qt::AlignHCenter);
    box->addWidget(m_slider);
    auto *ends = new QHBoxLayout;
    ends->addWidget(m_left);
    ends->addStretch();
    ends->addWidget(m_unit);
    ends->addStretch();
    ends->addWidget(m_right);
    box->addLayout(ends);
}

void TUParamSpeedWidget::update(Standard_parameters *parameters, double minimum, double maximum, double value) {
    TUParamWidget::update(parameters, minimum, maximum, value);
    // Refilling the box must not apply a preset: the set's own value stands.
    const QSignalBlocker blocker(m_modeBox);
    m_modeBox->clear();
    m_modes.clear();
    if (!parameters) return;
    auto offer = [this](bool offered, const char *text, Mode mode) {
        if (!offered) return;
        m_modeBox->addItem(scanTr(text));
        m_modes.append(mode);
    };
    offer(parameters->has_normal, "Normal", Normal);
    offer(parameters->has_fast, "Fast", Fast);
    offer(parameters->has_custom, "Custom", Custom);
    m_modeBox->setCurrentIndex(-1);
    m_unit->setText(scanTr(parameters->speed_label.toUtf8().constData()));
}

void TUParamSpeedWidget::selectMode(Mode mode) {
    qsizetype index = m_modes.indexOf(mode);
    if (index < 0 && mode == Custom && m_parameters && m_parameters->has_speed) {
        // A value that is no preset, in a set that offers no Custom: the box
        // still names what the slider holds, in an entry that can't be chosen.
        const QSignalBlocker blocker(m_modeBox);
        m_modeBox->addItem(scanTr("Custom"));
        m_modes.append(Custom);
        index = m_modes.size() - 1;
        if (auto *model = qobject_cast<QStandardItemModel *>(m_modeBox->model()))
            model->item(static_cast<int>(index))->setEnabled(false);
    }
    newSpeed(static_cast<int>(index));
}

void TUParamSpeedWidget::newSpeed(int index) {
    if (index < 0 || index >= m_modes.size()) return;
    {
        const QSignalBlocker blocker(m_modeBox);
        m_modeBox->setCurrentIndex(index);
    }
    const Mode mode = m_modes[index];
    if (mode == Custom) {
        enableSlider(m_parameters->has_custom);
        return;
    }
    const int32_t preset = mode == Normal ? m_parameters->normal : m_parameters->fast;
    if (preset != -1) {
        {
            const QSignalBlocker blocker(m_slider);
            m_slider->setValue(preset);
        }
        // Emitted even when the slider already stood there: the set takes the preset.
        sliderValueChanged(m_slider->value());
    }
    enableSlider(false);
}

void TUParamSpeedWidget::enableSlider(bool on) {
    for (QWidget *w : {static_cast<QWidget *>(m_slider), static_cast<QWidget *>(m_value),
                       static_cast<QWidget *>(m_left), static_cast<QWidget *>(m_right),
                       static_cast<QWidget *>(m_unit)})
        w->setEnabled(on);
}
