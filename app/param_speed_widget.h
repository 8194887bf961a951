#pragma once
// The scanner's speed: a slider with a mode box. In the preset modes Normal and
// Fast the slider holds the preset and cannot be moved; Custom frees it.
#include <QList>

#include "app/param_widget.h"

class QComboBox;

class TUParamSpeedWidget : public TUParamWidget {
    Q_OBJECT
public:
    enum Mode { Normal = 0, Fast = 1, Custom = 2 };

    explicit TUParamSpeedWidget(QWidget *parent = nullptr);
    // Also offers the modes of the set and shows its unit.
    void update(Standard_parameters *parameters, double minimum, double maximum, double value) override;
    // Selects a mode as the operator would; a mode the set does not offer does
    // nothing, except Custom, which the box then shows without offering it.
    void selectMode(Mode mode);

    QComboBox *modeBox() const { return m_modeBox; }
    QLabel *unitLabel() const { return m_unit; }

private slots:
    void newSpeed(int index);

private:
    void enableSlider(bool on);

    QComboBox *m_modeBox;
    QLabel *m_unit;
    QList<Mode> m_modes;  // the mode of each entry of the box
};
