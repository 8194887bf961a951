#include "app/report_box.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QSpacerItem>

#include "suite/base/pending_report.h"

namespace {

QMessageBox::Icon iconOf(char severity) {
    switch (severity) {
    case 'E': return QMessageBox::Critical;
    case 'W': return QMessageBox::Warning;
    default: return QMessageBox::Information;
    }
}

QString tr(const char *source) { return QCoreApplication::translate("TUUIMessage", source); }

constexpr const char *kIgnoreAllProperty = "ignoreAllButton";

// A message box sizes itself to its text; a spacer in its grid keeps it from
// shrinking below the given width, so that short reports stay readable.
void setMinimumTextWidth(QMessageBox &box, int width) {
    auto *grid = qobject_cast<QGridLayout *>(box.layout());
    if (!grid) return;
    grid->addItem(new QSpacerItem(width, 0, QSizePolicy::Minimum, QSizePolicy::Expanding), grid->rowCount(), 0, 1,
                  grid->columnCount());
}

int scaledToScreen(const QWidget &w, int px) { return px * w.logicalDpiX() / 96; }

}  // namespace

std::unique_ptr<QMessageBox> makeReportBox(char severity, const QStringList &pending, bool askIgnore,
                                           const QString &title, QWidget *parent) {
    auto box = std::make_unique<QMessageBox>(parent);
    box->setWindowTitle(title);
    box->setIcon(iconOf(severity));
    box->setTextFormat(Qt::PlainText);
    box->setText(MSG_PendingReport::heading(severity, pending.size()) + MSG_PendingReport::body(pending));
    if (askIgnore) {
        QPushButton *ignore = box->addButton(tr("Ignore"), QMessageBox::AcceptRole);
        QPushButton *all = box->addButton(tr("Ignore All"), QMessageBox::RejectRole);
        box->setDefaultButton(ignore);
        box->setEscapeButton(ignore);
        box->setProperty(kIgnoreAllProperty, QVariant::fromValue(static_cast<QObject *>(all)));
    } else {
        box->setDefaultButton(box->addButton(tr("OK"), QMessageBox::AcceptRole));
    }
    setMinimumTextWidth(*box, scaledToScreen(*box, kReportBoxWidth));
    return box;
}

bool isIgnoreAll(const QMessageBox &box) {
    const QObject *all = box.property(kIgnoreAllProperty).value<QObject *>();
    return all && box.clickedButton() == all;
}
