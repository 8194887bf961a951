#pragma once
// The table of the drawing selector: one row per drawing, "Drawing" and
// "Scanned?", whole rows selected, several at a time. Selected rows keep the
// active highlight when the dialog loses focus, so the operator always sees
// what will be scanned.
#include <QStyledItemDelegate>
#include <QTableWidget>
#include <QTableWidgetItem>

// An item that knows whether its row's drawing has been scanned.
class TUDsTableItem : public QTableWidgetItem {
public:
    TUDsTableItem(const QString &text, bool scanned);
    bool scanned() const { return scanned_; }
    // Tells the selector's own items from plain ones.
    virtual bool isDrawingSelectorItem() const { return true; }

private:
    bool scanned_;
};

// Paints a selected item as if the window were active.
class TUDrawingSelectorTableItemDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

class TUDrawingSelectorTable : public QTableWidget {
    Q_OBJECT
public:
    explicit TUDrawingSelectorTable(QWidget *parent = nullptr);

    // Appends a row: the name, and "Yes" or "No".
    void addDrawing(const QString &name, bool scanned);
    void clearDrawings();
    QString drawingName(int row) const;
    bool isScanned(int row) const;
    // Selects exactly the rows for which `wanted(scanned)` holds.
    template <typename Pred>
    void selectRows(Pred wanted) {
        clearSelection();
        for (int row = 0; row < rowCount(); ++row)
            if (wanted(isScanned(row))) addRowToSelection(row);
    }
    // Adds one row to the selection (selectRow would replace it).
    void addRowToSelection(int row);
    // Names of the selected rows, in table order.
    QStringList selectedDrawings() const;
};
