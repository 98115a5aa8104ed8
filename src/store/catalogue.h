#pragma once

// mDatabase: the one open catalogue and the routines that open and compact it.

#include <QString>
#include <memory>

#include "store/dao.h"

#include "store/passwordcheck.h"

extern std::unique_ptr<Database> gDatabase;
extern std::unique_ptr<Recordset> gRecordset;
extern QString gDatabasePath;
extern QString gDatabasePassword;

// Opens gDatabasePath exclusively with the password into gDatabase.
void OpenCatalogue();
