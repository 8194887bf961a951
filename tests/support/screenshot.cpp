#include "support/screenshot.h"

#include <QApplication>
#include <QDir>
#include <QPixmap>
#include <QWidget>

QString save_screenshot(QWidget *widget, const QString &name) {
    if (!widget) return {};
    QString dir = qEnvironmentVariable("SCAN_SCREENSHOT_DIR");
    if (dir.isEmpty()) dir = QDir::current().filePath(QStringLiteral("screenshots"));
    if (!QDir().mkpath(dir)) return {};
    QApplication::processEvents();
    const QString path = QDir(dir).filePath(name + QStringLiteral(".png"));
    return widget->grab().save(path) ? path : QString();
}
