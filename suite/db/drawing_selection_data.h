#pragma once
// The data of the drawing selector: which drawings of an element its scene
// exposes, and whether each has been scanned.
#include <QString>

#include <optional>
#include <vector>

#include "suite/db/tudbaccess.h"

struct DrawingSelectorRow {
    QString name;
    bool scanned = false;
    int scanCount = 0;
};

// Walks the element's cels under the cels lock. A cel's drawing name carries
// its suffix when it has versions; only names the scene exposes for the
// element get a row, in the order of the cels, each once. Nothing, with
// `error`, when the database could not be read.
std::optional<std::vector<DrawingSelectorRow>> drawingSelectorRows(TUDbAccess &db, const dba_scene_struct *scene,
                                                                   qint64 elementId, QString *error = nullptr);

// The operator's "Add Drawing": an empty name or one already in the rows is
// refused (false); otherwise a row not yet scanned is appended.
bool addDrawingSelectorRow(std::vector<DrawingSelectorRow> &rows, const QString &name);
