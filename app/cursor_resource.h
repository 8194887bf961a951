#pragma once
// Cursors of the station, from the application's resources by file name.
#include <QCursor>
#include <QString>

// The cursor drawn in ":/cursors/<name>" with its hot spot; the system's open
// hand when the picture is not among the resources.
QCursor RM_LoadCursor(const QString &name, int hotX, int hotY);
