#include "app/param_dlg.h"

#include <QSignalBlocker>
#include <QVBoxLayout>

#include "app/param_rgb_drop_widget.h"
#include "app/param_speed_widget.h"
#include "app/param_widget.h"
#include "scan/parameters.h"

TUParamDlg::TUParamDlg(QWidget *parent) : QWidget(parent), m_box(new QVBoxLayout(this)) {
    m_box->setContentsMargins(5, 5, 5, 5);
    m_box->setSpacing(5);
}

void TUParamDlg::hideAll() {
    for (QWidget *w : {static_cast<QWidget *>(m_speed), static_cast<QWidget *>(m_threshold),
                       static_cast<QWidget *>(m_blackPoint), static_cast<QWidget *>(m_whitePoint),
                       static_cast<QWidget *>(m_gamma), static_cast<QWidget *>(m_rgbDrop)})
        if (w) w->hide();
}

template <typename Widget, typename Update, typename Connect>
void TUParamDlg::showWidget(Widget *&widget, Update update, Connect connectNew) {
    if (widget) {
        const QSignalBlocker blocker(widget);
        update(widget);
    } else {
        widget = new Widget(this);
        update(widget);
        m_box->addWidget(widget);
        connectNew(widget);
    }
    widget->show();
}

template <typename Widget>
void TUParamDlg::showSlider(Widget *&widget, Standard_parameters *p, double minimum, double maximum, double value,
                            void (TUParamDlg::*slot)(Standard_parameters *, int)) {
    showWidget(
        widget, [&](Widget *w) { w->update(p, minimum, maximum, value); },
        [&](Widget *w) { connect(w, qOverload<Standard_parameters *, int>(&TUParamWidget::valueChanged), this, slot); });
}

void TUParamDlg::showGamma(Standard_parameters *p) {
    showWidget(
        m_gamma, [&](TUParamGammaWidget *w) { w->update(p, p->gamma_min, p->gamma_max, p->gamma_current); },
        [&](TUParamGammaWidget *w) {
            // The gamma is a fraction: only the double signal carries it whole.
            connect(w, qOverload<Standard_parameters *, double>(&TUParamWidget::valueChanged), this,
                    &TUParamDlg::gammaValueChanged);
        });
}

void TUParamDlg::showRgbDrop(Standard_parameters *p) {
    showWidget(
        m_rgbDrop, [&](TUParamRgbDropWidget *w) { w->update(p, p->rgbDrop_list, p->rgbDrop_index); },
        [&](TUParamRgbDropWidget *w) {
            connect(w, &TUParamRgbDropWidget::rgbChanged, this, &TUParamDlg::rgbDropValueChanged);
        });
}

void TUParamDlg::display(Standard_parameters *p) {
    hideAll();
    if (!p) return;
    if (has_rgbDrop_of_Standard_parameters(p)) showRgbDrop(p);
    if (has_threshold_of_Standard_parameters(p))
        showSlider(m_threshold, p, p->threshold_min, p->threshold_max, p->threshold_current,
                   &TUParamDlg::thresholdValueChanged);
    if (has_black_point_of_Standard_parameters(p))
        showSlider(m_blackPoint, p, p->black_point_min, p->black_point_max, p->black_point_current,
                   &TUParamDlg::blackPointValueChanged);
    if (has_white_point_of_Standard_parameters(p))
        showSlider(m_whitePoint, p, p->white_point_min, p->white_point_max, p->white_point_current,
                   &TUParamDlg::whitePointValueChanged);
    if (has_gamma_of_Standard_parameters(p)) showGamma(p);
    if (has_speed_of_Standard_parameters(p)) {
        showSlider(m_speed, p, p->speed_min, p->speed_max, p->speed_current, &TUParamDlg::speedValueChanged);
        const auto mode = speed_is_normal_of_Standard_parameters(p) ? TUParamSpeedWidget::Normal
                          : speed_is_fast_of_Standard_parameters(p) ? TUParamSpeedWidget::Fast
                                                                    : TUParamSpeedWidget::Custom;
        // The preset equals the set's value here; selecting it must not
        // report a change either.
        const QSignalBlocker blocker(m_speed);
        m_speed->selectMode(mode);
    }
}

void TUParamDlg::thresholdValueChanged(Standard_parameters *p, int value) {
    set_threshold_of_Standard_parameters(p, value);
}

void TUParamDlg::blackPointValueChanged(Standard_parameters *p, int value) {
    set_black_point_of_Standard_parameters(p, value);
}

void TUParamDlg::whitePointValueChanged(Standard_parameters *p, int value) {
    set_white_point_of_Standard_parameters(p, value);
}

void TUParamDlg::gammaValueChanged(Standard_parameters *p, double value) {
    set_gamma_of_Standard_parameters(p, static_cast<float>(value));
}

void TUParamDlg::speedValueChanged(Standard_parameters *p, int value) { set_speed_of_Standard_parameters(p, value); }

void TUParamDlg::rgbDropValueChanged(Standard_parameters *p, int value) {
    set_rgbDrop_index_of_Standard_parameters(p, value);
}

void SCANAPP_DisplayParameters(Standard_parameters *parameters, TUParamDlg *dialog) {
    if (dialog) dialog->display(parameters);
}
