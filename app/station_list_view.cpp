#include "app/station_list_view.h"

#include <QListWidget>

void StationListView::clear() { m_widget->clear(); }

void StationListView::appendRow(const QString &text) { m_widget->addItem(text); }

int StationListView::rowCount() const { return m_widget->count(); }

int StationListView::currentRow() const { return m_widget->currentRow(); }

void StationListView::setCurrentRow(int row) { m_widget->setCurrentRow(row); }

QString StationListView::rowText(int row) const {
    const QListWidgetItem *item = m_widget->item(row);
    return item ? item->text() : QString();
}

void StationListView::setCurrentText(const QString &text) {
    if (QListWidgetItem *item = m_widget->currentItem()) item->setText(text);
}

void StationListView::clearSelection() { m_widget->clearSelection(); }

void StationListView::scrollToCurrent() {
    if (QListWidgetItem *item = m_widget->currentItem()) m_widget->scrollToItem(item);
}
