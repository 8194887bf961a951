#include "app/tuuimessage.h"

#include <QApplication>
#include <QGuiApplication>
#include <QMessageBox>

#include "app/report_box.h"

namespace {

// Reports belong over the modal dialog the operator is answering, else over
// the window in front.
QWidget *reportParent() {
    if (QWidget *modal = QApplication::activeModalWidget()) return modal;
    return QApplication::activeWindow();
}

// A modal question shows the arrow, whatever long operation is under way.
struct ArrowCursor {
    ArrowCursor() { QGuiApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~ArrowCursor() { QGuiApplication::restoreOverrideCursor(); }
};

bool haveWidgets() { return qobject_cast<QApplication *>(QCoreApplication::instance()) != nullptr; }

}  // namespace

TUUIMessage::TUUIMessage(Settings settings, bool boxes)
    : TUMessage(settings), title_(settings.appName), boxes_(boxes && !settings.console) {}

bool TUUIMessage::screenShowsBoxes() {
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

bool TUUIMessage::report(char severity, const QStringList &pending, bool askIgnore) {
    if (!boxes_ || !haveWidgets()) return TUMessage::report(severity, pending, askIgnore);
    ArrowCursor arrow;
    const auto box = makeReportBox(severity, pending, askIgnore, title_, reportParent());
    box->exec();
    return askIgnore && isIgnoreAll(*box);
}

void TUUIMessage::showFatalLogFailure(const QStringList &lines) {
    if (!boxes_ || !haveWidgets()) return TUMessage::showFatalLogFailure(lines);
    ArrowCursor arrow;
    QMessageBox::critical(nullptr, title_, lines.join(QLatin1Char('\n')));
}
