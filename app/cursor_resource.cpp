#include "app/cursor_resource.h"

#include <QPixmap>

QCursor RM_LoadCursor(const QString &name, int hotX, int hotY) {
    const QPixmap picture(QStringLiteral(":/cursors/") + name);
    if (picture.isNull()) return QCursor(Qt::OpenHandCursor);
    return QCursor(picture, hotX, hotY);
}
