#include "import/importvalues.h"

#include <QDate>
#include <QFile>

#include "store/catalogue.h"
#include "toolkit/msgbox.h"
#include "toolkit/textencoding.h"
#include "toolkit/vberror.h"

bool ReadTextLines(const QString& path, QStringList& lines) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return false;
    QString text = DecodeText(file.readAll()).text;
    lines = text.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
    for (QString& line : lines)
        if (line.endsWith('\r')) line.chop(1);
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

ImportTransaction::ImportTransaction() {
    if (gDatabase && gDatabase->IsOpen() && !gDatabase->InTransaction()) {
        gDatabase->BeginTrans();
        own_ = true;
    }
}

ImportTransaction::~ImportTransaction() {
    if (!own_ || !gDatabase || !gDatabase->InTransaction()) return;
    try {
        gDatabase->CommitTrans();
    } catch (const VbError& error) {
        MsgBox("Error " + QString::number(error.Number) + ": " + error.Description, vbCritical);
    }
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
