#pragma once
// The binding of a scan session to one element of one scene of the production
// database: where the drawings go, what the element wants of them.
#include <QString>

#include <cstdint>

class TUDbAccess;
struct ScanConfig;

struct DatabaseBinding {
    bool open = false;  // the element's directory was found
    TUDbAccess *database = nullptr;  // not owned
    QString element_name;
    QString element_path;
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
int32_t pf_of_DatabaseBinding(const DatabaseBinding *binding);
float field_chart_of_DatabaseBinding(const DatabaseBinding *binding);

// Scan type 0 fits depth 2, 1 fits 1, 2 fits 0, 3 nothing.
bool binding_fits_depth(const DatabaseBinding *binding, int32_t depth);

// After a drawing of a database list was saved: marks its cel processed and
// queues it for vectorizing when the element wants that. A ScanResult: 0, 4
// without an open binding to a database, 12 when the queue failed.
int32_t UpdateDrawingDatabase(ScanConfig *config);
