#include "app/tudrawing_selector_table.h"

#include <QHeaderView>
#include <QItemSelectionModel>

#include <algorithm>

TUDsTableItem::TUDsTableItem(const QString &text, bool scanned) : QTableWidgetItem(text), scanned_(scanned) {
    setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
}

void TUDrawingSelectorTableItemDelegate::initStyleOption(QStyleOptionViewItem *option,
                                                         const QModelIndex &index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->state & QStyle::State_Selected) option->state |= QStyle::State_Active;
}

TUDrawingSelectorTable::TUDrawingSelectorTable(QWidget *parent) : QTableWidget(0, 2, parent) {
    setHorizontalHeaderLabels({tr("Drawing"), tr("Scanned?")});
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    verticalHeader()->hide();
    setColumnWidth(0, 200);
    setColumnWidth(1, 70);
    setMinimumHeight(300);
    setItemDelegate(new TUDrawingSelectorTableItemDelegate(this));
}

void TUDrawingSelectorTable::addDrawing(const QString &name, bool scanned) {
    const int row = rowCount();
    insertRow(row);
    setItem(row, 0, new TUDsTableItem(name, scanned));
    setItem(row, 1, new TUDsTableItem(scanned ? tr("Yes") : tr("No"), scanned));
}

void TUDrawingSelectorTable::clearDrawings() {
    clearSelection();
    setRowCount(0);
}

QString TUDrawingSelectorTable::drawingName(int row) const {
    const QTableWidgetItem *it = item(row, 0);
    return it ? it->text() : QString();
}

bool TUDrawingSelectorTable::isScanned(int row) const {
    const auto *it = dynamic_cast<const TUDsTableItem *>(item(row, 0));
    return it && it->scanned();
}

void TUDrawingSelectorTable::addRowToSelection(int row) {
    selectionModel()->select(model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

QStringList TUDrawingSelectorTable::selectedDrawings() const {
    QList<int> rows;
    for (const QModelIndex &index : selectionModel()->selectedRows()) rows.append(index.row());
    std::sort(rows.begin(), rows.end());
    QStringList names;
    for (int row : rows) names.append(drawingName(row));
    return names;
}
