#include "store/catalogue.h"

std::unique_ptr<Database> gDatabase;
std::unique_ptr<Recordset> gRecordset;
QString gDatabasePath;
QString gDatabasePassword;

void OpenCatalogue() {
    gDatabase = DBEngine::OpenDatabase(gDatabasePath, true, false, ";pwd=" + gDatabasePassword);
}
