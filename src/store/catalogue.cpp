#include "store/catalogue.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "toolkit/vb/vbruntime.h"

std::unique_ptr<Database> gDatabase;
std::unique_ptr<Recordset> gRecordset;
QString gDatabasePath;
QString gDatabasePassword;
QString gViewSQL;

void OpenCatalogue() {
    gDatabase = DBEngine::OpenDatabase(gDatabasePath, true, false, ";pwd=" + gDatabasePassword);
}

void RunAsTransaction(Database& database, const std::function<void()>& writes) {
    database.BeginTrans();
    try {
        writes();
        database.CommitTrans();
    } catch (...) {
        // The failure that ended the writes is the one to report.
        ResumeNext([&] { database.Rollback(); });
        throw;
    }
}

QString CatalogueFolder() {
    // Write permission is the owner's, as for the catalogue's own read-only attribute, so that
    // a folder its owner protected counts as read-only even for root.
    const QFileInfo programFolder(App.Path);
    if (programFolder.isWritable() && programFolder.permission(QFile::WriteOwner)) return App.Path;
    const QString dataFolder =
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/velmora";
    QDir().mkpath(dataFolder);
    return dataFolder;
}

bool CatalogueCannotBeWritten(const VbError& error) {
    switch (error.Number) {
        case jetObjectReadOnly:
        case 3035:  // System resource exceeded: the disk is full.
        case 3043:  // Disk or network error.
            return true;
        default:
            return false;
    }
}
