// Compaction of the closed catalogue into a temporary file, and the swap that puts the compacted
// file in place without a moment in which the program has no catalogue.

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <filesystem>

#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "toolkit/msgbox.h"
#include "toolkit/vbruntime.h"

namespace {

const QString kCompactErrorTitle = "Error compacting database";

// Forces a file or folder to disk, so a crash right after the rename cannot leave a catalogue
// whose name points at data that was never written.
void SyncToDisk(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

// The rename replaces the old file in one step: the catalogue's name always points at a whole
// file, the old one or the compacted one.
void ReplaceCatalogue(const QString& compacted, const QString& catalogue) {
    SyncToDisk(compacted);
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(compacted).toStdString(),
                            QFile::encodeName(catalogue).toStdString(), error);
    if (error) throw VbError(75, QString::fromStdString(error.message()));
    SyncToDisk(QFileInfo(catalogue).absolutePath());
}

}  // namespace

QString CompactInto(const QString& source, const QString& target, const QString& password) {
    try {
        DBEngine::CompactDatabase(source, target, ";LANGID=0x0409;CP=1252;COUNTRY=0;pw=" + password,
                                  dbVersion40, ";pwd=" + password);
        return QString();
    } catch (const VbError& raised) {
        QList<VbError> errors = DBEngine::Errors();
        if (errors.isEmpty()) errors.append(raised);
        QString text;
        for (const VbError& error : errors)
            text += QString::number(error.Number) + "|" + error.Description + "\t";
        return text;
    }
}

void CompactCatalogue(bool reopen, const QString& filter, const QString& sort) {
    try {
        if (gDatabase) {
            gDatabase->Close();
            gDatabase.reset();
        }
        const QString temporaryPath = AddBackslash(CatalogueFolder()) + "data.compacted";
        const QString errors = CompactInto(gDatabasePath, temporaryPath, gDatabasePassword);
        if (!errors.isEmpty())
            MsgBox(errors, vbCritical, kCompactErrorTitle);
        else if (QFile::exists(temporaryPath))
            ReplaceCatalogue(temporaryPath, gDatabasePath);

        if (reopen) {
            OpenCatalogue();
            gRecordset.reset();
            gRecordset = gDatabase->OpenRecordset(gViewSQL, dbOpenDynaset);
            gRecordset->SetFilter(filter);
            gRecordset->SetSort(sort);
            gRecordset->Requery();
        }
    } catch (const VbError& error) {
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical,
               kCompactErrorTitle);
    }
}
