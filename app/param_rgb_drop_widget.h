#pragma once
// The drop colour of a scanner that can leave one colour out of a scan: a box
// of the set's colours. Each entry is the whole text of the set's list; the
// name before the first comma is what the operator reads.
#include <QFrame>
#include <QStringList>

struct Standard_parameters;
class QComboBox;

class TUParamRgbDropWidget : public QFrame {
    Q_OBJECT
public:
    explicit TUParamRgbDropWidget(QWidget *parent = nullptr);
    // An index below 0 selects nothing.
    void update(Standard_parameters *parameters, const QStringList &colours, int index);

    Standard_parameters *parameters() const { return m_parameters; }
    QComboBox *colourBox() const { return m_colours; }

signals:
    void rgbChanged(Standard_parameters *parameters, int index);

private slots:
    void newRgbDrop(int index);

private:
    QComboBox *m_colours;
    Standard_parameters *m_parameters = nullptr;
};
