// Compaction of the closed catalogue into a temporary file, and the swap that puts the compacted
// file in place without a moment in which the program has no catalogue.

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QMetaObject>
#include <filesystem>

#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

namespace {

std::function<void()> gCatalogueLost;

const QString kCompactErrorTitle = "Error compacting database";

// Forces a file or folder to disk, so a crash right after the rename cannot leave a catalogue
// whose name points at data that was never written.
void SyncToDisk(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

// The file the catalogue's name stands for. A catalogue kept in a synced folder is often a
// symbolic link: the file it points at is the one compacted and replaced, the link stays.
QString CatalogueFile(const QString& path) {
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? info.canonicalFilePath() : path;
}

// Beside the catalogue's own file, so that the rename stays on one file system.
QString TemporaryPathBeside(const QString& catalogue) {
    return AddBackslash(QFileInfo(catalogue).absolutePath()) + "data.compacted";
}

// The rename replaces the old file in one step: the catalogue's name always points at a whole
// file, the old one or the compacted one. The compacted file takes the old one's permissions.
void ReplaceCatalogue(const QString& compacted, const QString& catalogue) {
    QFile::setPermissions(compacted, QFile::permissions(catalogue));
    SyncToDisk(compacted);
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(compacted).toStdString(),
                            QFile::encodeName(catalogue).toStdString(), error);
    if (error) {
        QFile::remove(compacted);
        throw VbError(75, QString::fromStdString(error.message()));
    }
    SyncToDisk(QFileInfo(catalogue).absolutePath());
}

void EndProgramWithoutCatalogue() {
    QMetaObject::invokeMethod(
        qApp,
        [] {
            if (gCatalogueLost) gCatalogueLost();
        },
        Qt::QueuedConnection);
}

// The program must not run on without its catalogue: the user may try again, or the program
// closes through its normal exit.
void ReopenCatalogue(const QString& filter, const QString& sort) {
    for (;;) {
        try {
            OpenCatalogue();
            break;
        } catch (const VbError& error) {
            const int answer =
                MsgBox("Velmora could not open its database again after compacting it." + vbCrLf +
                           QString::number(error.Number) + ": " + error.Description + vbCrLf +
                           "Click \"Retry\" to try again, or \"Cancel\" to close Velmora.",
                       vbRetryCancel | vbCritical, kCompactErrorTitle);
            if (answer != vbRetry) {
                EndProgramWithoutCatalogue();
                return;
            }
        }
    }
    gRecordset.reset();
    gRecordset = gDatabase->OpenRecordset(gViewSQL, dbOpenDynaset);
    gRecordset->SetFilter(filter);
    gRecordset->SetSort(sort);
    gRecordset->Requery();
}

}  // namespace

void SetCatalogueLostHandler(std::function<void()> handler) {
    gCatalogueLost = std::move(handler);
}

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
        const QString catalogue = CatalogueFile(gDatabasePath);
        const QString temporaryPath = TemporaryPathBeside(catalogue);
        const QString errors = CompactInto(catalogue, temporaryPath, gDatabasePassword);
        if (!errors.isEmpty())
            MsgBox(errors, vbCritical, kCompactErrorTitle);
        else if (QFile::exists(temporaryPath))
            ReplaceCatalogue(temporaryPath, catalogue);
    } catch (const VbError& error) {
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical,
               kCompactErrorTitle);
    }
    if (!reopen) return;
    try {
        ReopenCatalogue(filter, sort);
    } catch (const VbError& error) {
        MsgBox(QString::number(error.Number) + ": " + error.Description, vbCritical,
               kCompactErrorTitle);
    }
}
