#include "suite/db/drawing_selection_data.h"

#include <QSet>

#include "suite/base/assertion.h"

std::optional<std::vector<DrawingSelectorRow>> drawingSelectorRows(TUDbAccess &db, const dba_scene_struct *scene,
                                                                   qint64 elementId, QString *error) {
    const auto failed = [error](const QString &why) {
        if (error) *error = why;
        return std::nullopt;
    };
    LMV_ASSERT_RET(scene, failed(QStringLiteral("no scene is open")));
    const QStringList exposedList = db.dba_ExposedDrawings(scene, elementId);
    if (!db.lastError().isEmpty()) return failed(db.lastError());
    const QSet<QString> exposed(exposedList.begin(), exposedList.end());
    std::vector<DrawingSelectorRow> rows;
    if (exposed.isEmpty()) return rows;

    if (db.dba_LockCelsDatabase(scene) != 0) return failed(db.lastError());
    QString why;
    QSet<QString> seen;
    dba_celTable_struct table;
    for (qint64 cel = db.dba_GetElementCels(&table, elementId);; cel = db.dba_GetNextElementCel(&table, elementId)) {
        // A walk ends at id 0; a failure ends it too, with a reason.
        if (cel == 0) {
            why = db.lastError();
            break;
        }
        const std::optional<dba_cel_struct> info = db.dba_GetCelInfo(scene, cel, 0);
        if (!info) {
            why = db.lastError();
            if (why.isEmpty()) continue;  // gone since the walk began
            break;
        }
        const QString name = info->drawingName();
        if (!exposed.contains(name) || seen.contains(name)) continue;
        seen.insert(name);
        rows.push_back({name, info->scanCount >= 1, info->scanCount});
    }
    db.dba_UnlockCelsDatabase(scene);
    if (!why.isEmpty()) return failed(why);
    return rows;
}

bool addDrawingSelectorRow(std::vector<DrawingSelectorRow> &rows, const QString &name) {
    if (name.isEmpty()) return false;
    for (const DrawingSelectorRow &row : rows)
        if (row.name == name) return false;
    rows.push_back({name, false, 0});
    return true;
}
