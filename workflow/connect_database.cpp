#include "workflow/connect_database.h"

#include "suite/base/msg_scope.h"
#include "suite/db/dba_records.h"
#include "suite/db/tudbaccess_creation.h"

int ConnectDatabase(std::unique_ptr<TUDbAccess> &database) {
    std::unique_ptr<TUDbAccess> access = TUDbAccessCreation::getInstance()->createDbAccessSingleDbClient();
    access->dba_Initialize2dSystem(QStringLiteral("Scan"));
    if (access->dba_Open2dDatabaseSession() == -1) {
        MSG_Scope(MSG_Text("kqscanmain", "Could not connect to the database, exiting application."),
                  MSG_ACTION_FATAL);
        return 0;
    }
    access->dba_startKeepAlivePulse();
    database = std::move(access);
    return 1;
}

QList<int> selector_user_types() {
    return {DBA_USER_ADMINISTRATOR, DBA_USER_SUPERVISOR, DBA_USER_ANIMATOR, DBA_USER_SCANNER_OPERATOR,
            DBA_USER_INK_AND_PAINT, DBA_USER_CHECKER,    DBA_USER_COMPOSITOR, DBA_USER_DIRECTOR,
            DBA_USER_GUEST};
}
