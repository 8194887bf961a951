#pragma once
// The station's connection to the production database at start-up: the access
// is made, the session opened and kept alive. The selector of the window is
// built from the user types below.
#include <QList>

#include <memory>

class TUDbAccess;

// 1 with the open access in `database`; 0 after telling the operator that
// the database could not be reached (the station then leaves).
int ConnectDatabase(std::unique_ptr<TUDbAccess> &database);

// The kinds of user the database selector offers: all but the vectorize
// service, which never sits at a station.
QList<int> selector_user_types();
