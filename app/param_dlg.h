#pragma once
// The scan parameter panel under the scanner settings: exactly the values that
// the selected scanner offers at the selected depth. Each slider is made when
// first needed and then reused; one that does not apply is hidden. A move is
// written straight into the parameter set it shows, which the next scan uses.
#include <QWidget>

struct Standard_parameters;
class QVBoxLayout;
class TUParamWidget;
class TUParamThresholdWidget;
class TUParamBlackPointWidget;
class TUParamWhitePointWidget;
class TUParamGammaWidget;
class TUParamSpeedWidget;
class TUParamRgbDropWidget;

class TUParamDlg : public QWidget {
    Q_OBJECT
public:
    explicit TUParamDlg(QWidget *parent = nullptr);

    // Shows the widgets of a set, or hides them all for a null set. Showing
    // another set emits no value and changes no set.
    void display(Standard_parameters *parameters);

    // Null until first needed.
    TUParamThresholdWidget *thresholdWidget() const { return m_threshold; }
    TUParamBlackPointWidget *blackPointWidget() const { return m_blackPoint; }
    TUParamWhitePointWidget *whitePointWidget() const { return m_whitePoint; }
    TUParamGammaWidget *gammaWidget() const { return m_gamma; }
    TUParamSpeedWidget *speedWidget() const { return m_speed; }
    TUParamRgbDropWidget *rgbDropWidget() const { return m_rgbDrop; }

public slots:
    void thresholdValueChanged(Standard_parameters *parameters, int value);
    void blackPointValueChanged(Standard_parameters *parameters, int value);
    void whitePointValueChanged(Standard_parameters *parameters, int value);
    void gammaValueChanged(Standard_parameters *parameters, double value);
    void speedValueChanged(Standard_parameters *parameters, int value);
    void rgbDropValueChanged(Standard_parameters *parameters, int value);

private:
    void hideAll();
    // Updates the widget in its slot (its signals blocked), or makes it,
    // updates it, lays it out and connects it; then shows it.
    template <typename Widget, typename Update, typename Connect>
    void showWidget(Widget *&widget, Update update, Connect connectNew);
    template <typename Widget>
    void showSlider(Widget *&widget, Standard_parameters *parameters, double minimum, double maximum, double value,
                    void (TUParamDlg::*slot)(Standard_parameters *, int));
    void showGamma(Standard_parameters *parameters);
    void showRgbDrop(Standard_parameters *parameters);

    QVBoxLayout *m_box;
    TUParamSpeedWidget *m_speed = nullptr;
    TUParamThresholdWidget *m_threshold = nullptr;
    TUParamBlackPointWidget *m_blackPoint = nullptr;
    TUParamWhitePointWidget *m_whitePoint = nullptr;
    TUParamGammaWidget *m_gamma = nullptr;
    TUParamRgbDropWidget *m_rgbDrop = nullptr;
};

// What the session calls at each scanner selection and depth change, with the
// set of that depth.
void SCANAPP_DisplayParameters(Standard_parameters *parameters, TUParamDlg *dialog);
