#pragma once
// The list of the station's vectorization styles: the operator picks one, and
// the vectorize queue is given its option line.
#include <QDialog>

#include <vector>

#include "vectorize/vectorization_styles.h"

class QListWidget;
class QListWidgetItem;
class QPushButton;

class TUVectOptionsDlg : public QDialog {
    Q_OBJECT
public:
    // Reads the styles from `path` (by default the configuration folder's
    // VectOptions.conf); "Default Style" is chosen at start.
    explicit TUVectOptionsDlg(QWidget *parent, const QString &path = vectorizationStylesPath());

    // The option line and the name of the chosen style; empty when none is.
    QString currentOptions() const;
    QString currentName() const;

    // Notes the chosen row, so that Cancel can go back to it, then shows.
    void show();
    void reject() override;

    QListWidget *list() const { return m_list; }

private slots:
    void selectItem(QListWidgetItem *item);

private:
    const VectorizationStyle *selectedStyle() const;

    QListWidget *m_list;
    QPushButton *m_ok;
    QPushButton *m_cancel;
    std::vector<VectorizationStyle> m_styles;
    int m_shownRow = -1;
};
