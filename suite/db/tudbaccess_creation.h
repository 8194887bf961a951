#pragma once
// Makes the station's database access: the connection chosen by $SCAN_DB,
// else the embedded default.
#include <memory>

#include "suite/db/tudbaccess.h"

class TUDbAccessCreation {
public:
    static TUDbAccessCreation *getInstance();
    // A new, not yet opened access (call dba_Open2dDatabaseSession).
    std::unique_ptr<TUDbAccess> createDbAccessSingleDbClient();
};
