#include "suite/db/drawing_selection_data.h"

#include <QSet>

#include "suite/base/assertion.h"

std::vector<DrawingSelectorRow> drawingSelectorRows(TUDbAccess &db, const dba_scene_struct *scene, qint64 elementId) {
    std::vector<DrawingSelectorRow> rows;
    LMV_ASSERT_RET(scene, rows);
    const QStringList exposedList = db.dba_ExposedDrawings(scene, elementId);
    const QSet<QString> exposed(exposedList.begin(), exposedList.end());
    if (exposed.isEmpty()) return rows;

    if (db.dba_LockCelsDatabase(scene) != 0) return rows;
    QSet<QString> seen;
    dba_celTable_struct table;
    for (qint64 cel = db.dba_GetElementCels(&table, elementId); cel != 0;
         cel = db.dba_GetNextElementCel(&table, elementId)) {
        const std::optional<dba_cel_struct> info = db.dba_GetCelInfo(scene, cel, 0);
        if (!info) continue;
        const QString name = info->drawingName();
        if (!exposed.contains(name) || seen.contains(name)) continue;
        seen.insert(name);
        rows.push_back({name, info->scanCount >= 1, info->scanCount});
    }
    db.dba_UnlockCelsDatabase(scene);
    return rows;
}

bool addDrawingSelectorRow(std::vector<DrawingSelectorRow> &rows, const QString &name) {
    if (name.isEmpty()) return false;
    for (const DrawingSelectorRow &row : rows)
        if (row.name == name) return false;
    rows.push_back({name, false, 0});
    return true;
}
