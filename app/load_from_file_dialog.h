#pragma once
// The file dialog of "Load From File": Qt's own dialog, telling file types
// by their names alone. Finding a type by content opens the file, and the
// dialog may well show the folder of the production database: opening and
// closing one of its files in the station's process would drop the locks
// that SQLite holds on them, and with them the station's share of the file.
#include <QString>

class QWidget;

// The chosen file; a null string when the operator cancels.
QString choose_file_to_load(QWidget *parent, const QString &title, const QString &startFolder);
