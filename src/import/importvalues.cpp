#include "import/importvalues.h"

#include <QDate>
#include <QFile>

#include "store/catalogue.h"
#include "toolkit/platform/textencoding.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"

bool ReadTextLines(const QString& path, QStringList& lines, QString* problem) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (problem) *problem = file.errorString();
        return false;
    }
    lines = DecodeLines(file.readAll());
    return true;
}

QString TodayText() {
    return QDate::currentDate().toString(Qt::ISODate);
}

void ShowImportStopped(const QString& source, const QString& file, int number,
                       const QString& description) {
    MsgBox("The import from " + file + " stopped." + "\r\n" + "Error " + QString::number(number) +
               ": " + description,
           vbCritical, "Importing from " + source);
}

namespace {

constexpr int kBatchTitles = 500;
constexpr qint64 kBatchMilliseconds = 250;

}  // namespace

ImportBatches::ImportBatches(const QString& source, const QString& file)
    : source_(source), file_(file) {
    if (gDatabase && gDatabase->IsOpen() && !gDatabase->InTransaction()) {
        gDatabase->BeginTrans();
        own_ = true;
        clock_.start();
    }
}

ImportBatches::~ImportBatches() {
    Finish();
}

bool ImportBatches::TitleDone(bool kept) {
    if (failed_) return false;
    if (!own_) {
        keptInAll_ += kept ? 1 : 0;
        return true;
    }
    // The engine undoes a whole transaction by itself on some failures (a full disk while it
    // writes): the batch is gone, and the statement that failed has told why.
    if (!gDatabase->InTransaction()) {
        const VbError cause = DBEngine::Errors().value(0, VbError(3035));
        lost_ = kept_;
        Fail(cause.Number, cause.Description);
        return false;
    }
    if (kept) {
        ++kept_;
        ++keptInAll_;
    }
    if (++titles_ < kBatchTitles && clock_.elapsed() < kBatchMilliseconds) return true;
    if (!Commit()) return false;
    try {
        gDatabase->BeginTrans();
    } catch (const VbError& error) {
        Fail(error.Number, error.Description);
        return false;
    }
    return true;
}

void ImportBatches::Stop(const VbError& error, bool kept) {
    if (failed_) return;
    keptInAll_ += kept ? 1 : 0;
    if (own_) {
        kept_ += kept ? 1 : 0;
        try {
            // Committing fails too when the engine has already undone the batch.
            gDatabase->CommitTrans();
        } catch (const VbError&) {
            try {
                if (gDatabase->InTransaction()) gDatabase->Rollback();
            } catch (const VbError&) {
            }
            lost_ = kept_;
        }
    }
    Fail(error.Number, error.Description);
}

bool ImportBatches::Finish() {
    if (!own_ || failed_) return !failed_;
    own_ = false;
    return Commit();
}

bool ImportBatches::Commit() {
    try {
        gDatabase->CommitTrans();
    } catch (const VbError& error) {
        // The batch is given up whole; when even that fails, the engine undoes it on closing.
        try {
            if (gDatabase->InTransaction()) gDatabase->Rollback();
        } catch (const VbError&) {
        }
        lost_ = kept_;
        Fail(error.Number, error.Description);
        return false;
    }
    titles_ = 0;
    kept_ = 0;
    clock_.restart();
    return true;
}

void ImportBatches::Fail(int number, const QString& description) {
    failed_ = true;
    own_ = false;
    ShowImportStopped(source_, file_, number, description);
}

long AudioVendorId(const QString& artist) {
    auto rs = gDatabase->OpenRecordset(
        "select * from vendor where idplatform = 1 and nmvendor = '" + artist + "'");
    long idvendor = 0;
    bool found = false;
    for (; !rs->IsEOF(); rs->MoveNext()) {
        idvendor = (*rs)["idvendor"].toLongLong();
        found = true;
    }
    if (found) return idvendor;
    auto vendor = gDatabase->OpenRecordset("vendor");
    vendor->AddNew();
    vendor->Fields("idplatform").SetValue(1);
    vendor->Fields("nmvendor").SetValue(artist);
    // The counter of a new row is known before Update.
    idvendor = (*vendor)["idvendor"].toLongLong();
    vendor->Update();
    return idvendor;
}
