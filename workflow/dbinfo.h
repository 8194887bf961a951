#pragma once
// The binding of a scan session to one element of one scene of the production
// database: where the drawings go, what the element wants of them.
#include <QString>
#include <QStringList>

#include <cstdint>

#include "suite/db/dba_records.h"

class TUDbAccess;
struct ScanConfig;

struct DatabaseBinding {
    bool open = false;  // the element's directory was found
    TUDbAccess *database = nullptr;  // not owned
    QString element_name;
    QString element_path;    // absolute directory of the element
    LMV_element_data element;  // the element record; empty until bound
    bool needs_vectorization = false;
    bool uses_pixmap = false;
    int32_t pf = 24;         // the Drawing's file kind
    int32_t scan_type = 4;   // ElementScanType
    float field_chart = 0.0f;
};

DatabaseBinding *DatabaseBindingCreate(TUDbAccess *database);
void DatabaseBindingDestroy(DatabaseBinding *binding);

// Name and path also assert that the binding is open.
QString name_of_DatabaseBinding(const DatabaseBinding *binding);
QString path_of_DatabaseBinding(const DatabaseBinding *binding);
TUDbAccess *database_of_DatabaseBinding(const DatabaseBinding *binding);
int32_t scan_type_of_DatabaseBinding(const DatabaseBinding *binding);
bool needs_vectorization_of_DatabaseBinding(const DatabaseBinding *binding);
bool uses_pixmap_of_DatabaseBinding(const DatabaseBinding *binding);
int32_t pf_of_DatabaseBinding(const DatabaseBinding *binding);
float field_chart_of_DatabaseBinding(const DatabaseBinding *binding);

// Scan type 0 fits depth 2, 1 fits 1, 2 fits 0, 3 nothing.
bool binding_fits_depth(const DatabaseBinding *binding, int32_t depth);

// The element's folder: the open scene's path made usable and remapped for
// this machine, then "/" and the element's own path.
QString element_path_of_database(TUDbAccess *database, qint64 elementId);

// After the operator chose drawings of element `elementId` of the open scene:
// binds the session to the element (the old binding goes) and, when the
// element's folder exists, builds the database list of `names`. Otherwise
// reports the missing folder and leaves the binding closed and the list
// alone. True when the list was built.
bool bind_element_of_ScanConfig(ScanConfig *config, qint64 elementId, const QStringList &names);

// After a drawing of a database list was saved: marks its cel processed and
// queues it for vectorizing when the element wants that. A ScanResult: 0, 4
// without a session, binding, database or list, 12 when the queue failed.
int32_t UpdateDrawingDatabase(ScanConfig *config);
