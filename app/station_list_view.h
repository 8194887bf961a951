#pragma once
// The drawing list as the station shows it: the rows of a QListWidget, whose
// current row is the list's current row.
#include "workflow/scan_window.h"

class QListWidget;

class StationListView : public DrawingListView {
public:
    explicit StationListView(QListWidget *widget) : m_widget(widget) {}

    void clear() override;
    void appendRow(const QString &text) override;
    int rowCount() const override;
    int currentRow() const override;
    void setCurrentRow(int row) override;
    QString rowText(int row) const override;
    void setCurrentText(const QString &text) override;
    void clearSelection() override;
    void scrollToCurrent() override;

private:
    QListWidget *m_widget;
};
