#include "suite/db/tudbaccess_creation.h"

#include "suite/db/sql_db_access.h"

TUDbAccessCreation *TUDbAccessCreation::getInstance() {
    static TUDbAccessCreation creation;
    return &creation;
}

std::unique_ptr<TUDbAccess> TUDbAccessCreation::createDbAccessSingleDbClient() {
    return std::make_unique<SqlDbAccess>();
}
