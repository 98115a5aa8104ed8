// Titles from a TAB-delimited text file: one title a line in fourteen columns, the lookups it
// names made as they are met.

#include <QFile>
#include <algorithm>

#include "app/mGlobals.h"
#include "import/frmImport.h"
#include "import/importvalues.h"
#include "import/tablookups.h"
#include "store/catalogue.h"
#include "toolkit/platform/textencoding.h"
#include "toolkit/vb/cCommonDialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbconvert.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kNewLineToken = "<NEWLINE>";

// A missing column is a subscript error, as reading past the end of the split array is.
const QString& Column(const QStringList& columns, int index) {
    if (index >= columns.size()) throw VbError(9);
    return columns[index];
}

QString MultiLine(const QString& text) {
    return QString(text).replace(kNewLineToken, "\r\n");
}

// The numeric columns take a default when empty.
int NumberOr(const QString& text, int empty, int (*convert)(const QString&)) {
    return text.isEmpty() ? empty : convert(text);
}

QVariant StoredText(const QString& text) {
    return text.isEmpty() ? QVariant(kEmptyTextMark) : QVariant(text);
}

}  // namespace

void frmImport::ImportTabLine(const QStringList& Columns, Recordset& rs, bool WarnTitles,
                              bool& Succeeded) {
    Succeeded = false;
    long idcd = 0;
    bool idRead = false;
    try {
        const QString platform = Column(Columns, 0);
        const QString type = Column(Columns, 1);
        const QString specific = Column(Columns, 2);
        const QString vendor = Column(Columns, 3);
        const QString name = Column(Columns, 4);
        const QString mediatype = Column(Columns, 5);
        const QString label = Column(Columns, 6);
        const int rating = NumberOr(Column(Columns, 7), 0, CIntText);
        const QString listing = MultiLine(Column(Columns, 8));
        const qint32 titleId = Column(Columns, 9).isEmpty() ? 0 : CLngText(Column(Columns, 9));
        const int numTracks = NumberOr(Column(Columns, 10), 0, CByteText);
        const QString memo = MultiLine(Column(Columns, 11));
        // An empty column names no track at all.
        const QStringList trackNames = Column(Columns, 12).isEmpty()
                                           ? QStringList()
                                           : Column(Columns, 12).split(kNewLineToken);
        const int discs = NumberOr(Column(Columns, 13), 1, CByteText);

        std::unique_ptr<Recordset> lookup;
        long idplatform = 0, idtype = 0, idspecific = 0, idvendor = 0, idmediatype = 0;
        FindPlatformId(platform, lookup, true, idplatform);
        FindTypeId(type, idplatform, lookup, true, idtype);
        FindSpecificId(specific, idtype, lookup, true, idspecific);
        FindVendorId(vendor, idplatform, lookup, true, idvendor);
        FindMediatypeId(mediatype, 1, lookup, true, idmediatype);

        rs.AddNew();
        idcd = rs["idcd"].toLongLong();
        idRead = true;
        rs.Fields("nmcd").SetValue(name);
        rs.Fields("nrcds").SetValue(discs);
        rs.Fields("idvendor").SetValue(QVariant::fromValue<qint64>(idvendor));
        rs.Fields("idplatform").SetValue(QVariant::fromValue<qint64>(idplatform));
        rs.Fields("idtype").SetValue(QVariant::fromValue<qint64>(idtype));
        rs.Fields("idspecific").SetValue(QVariant::fromValue<qint64>(idspecific));
        rs.Fields("idmediatype").SetValue(QVariant::fromValue<qint64>(idmediatype));
        rs.Fields("iddevicetype").SetValue(1);
        rs.Fields("idfilesystem").SetValue(1);
        rs.Fields("capacity").SetValue(0);
        rs.Fields("freespace").SetValue(0);
        if (titleId != 0) rs.Fields("TitleID").SetValue(titleId);
        rs.Fields("NumTracks").SetValue(numTracks);
        rs.Fields("rating").SetValue(rating);
        rs.Fields("price").SetValue(0);
        rs.Fields("label").SetValue(label);
        rs.Fields("listing").SetValue(StoredText(listing));
        rs.Fields("memo").SetValue(StoredText(memo));
        const QString created = TodayText();
        rs.Fields("created").SetValue(created);
        rs.Fields("modified").SetValue(created);
        rs.Update();

        if (numTracks > 0) {
            auto tracks = gDatabase->OpenRecordset("SELECT * FROM Tracks WHERE idcd = " +
                                                   QString::number(idcd));
            for (int i = 1; i <= numTracks; ++i) {
                tracks->AddNew();
                tracks->Fields("idcd").SetValue(QVariant::fromValue<qint64>(idcd));
                tracks->Fields("TrackID").SetValue(i - 1);
                if (i - 1 >= trackNames.size()) throw VbError(9);
                tracks->Fields("TrackName").SetValue(trackNames[i - 1]);
                tracks->Update();
            }
        }
        Succeeded = true;
    } catch (const VbError& error) {
        // The title of a half-written record goes again; its track rows are left to the store.
        if (idRead) gDatabase->Execute("DELETE FROM title WHERE idcd = " + QString::number(idcd));
        if (CatalogueCannotBeWritten(error)) throw;
        if (WarnTitles)
            MsgBox("Error " + QString::number(error.Number) + ": " + error.Description, vbCritical,
                   "Error adding title " + Columns.value(4));
    }
}

void frmImport::ImportTabFile() {
    QFile file;
    std::unique_ptr<Recordset> rs;
    qint64 lineCount = 0;
    try {
        cCommonDialog dialog;
        dialog.hWnd = this;
        dialog.DialogTitle = "Select a TAB delimited file to import cd-titles from";
        dialog.DefaultExt = "txt";
        dialog.flags = 6148;
        dialog.InitDir = App.Path;
        dialog.Filter = "textfiles (*.txt)|*.txt|all files (*.*)|*.*";
        dialog.FilterIndex = 1;
        dialog.ShowOpen();
        file.setFileName(dialog.Filename);
        if (file.fileName().isEmpty()) return;
        rs = gDatabase->OpenRecordset("select * from title where idcd = 0");
        if (!file.open(QIODevice::ReadOnly))
            throw VbError(53, "File not found: " + file.fileName());
        // The file is read line by line as it is imported, twice: first for the count that the
        // progress needs.
        lineCount = TextLineReader(file).CountRest();
        file.seek(0);
    } catch (const VbError& error) {
        MsgBox("Error " + QString::number(error.Number) + ": " + error.Description, vbCritical,
               "Error when importing from TAB delimited file");
        return;
    }

    // A line of spaces alone is no record; a TAB is no space.
    const auto blank = [](const QString& line) {
        return std::all_of(line.begin(), line.end(), [](QChar c) { return c == u' '; });
    };
    const QString progress = "Importing line";
    ImportBatches batches(Check1[2]->text(), file.fileName());
    TextLineReader lines(file);
    QString line;
    qint32 tried = 0;
    for (qint64 index = 0; index < lineCount && lines.Next(line); ++index) {
        ReportProgress(progress, index + 1, lineCount);
        if (blank(line)) {
            DoEvents();
            continue;
        }
        QStringList columns;
        bool succeeded = false;
        try {
            columns = line.split('\t');
            ++tried;
            // A recordset of its own for every line: an open one keeps each row added through
            // it, and a listing may be large.
            rs = gDatabase->OpenRecordset("select * from title where idcd = 0");
            ImportTabLine(columns, *rs, WarnTitles, succeeded);
        } catch (const VbError& error) {
            if (CatalogueCannotBeWritten(error)) {
                batches.Stop(error, false);
                break;
            }
            if (WarnTitles)
                MsgBox("The cd with title '" + columns.value(3) +
                           "' cannot be added and will be skipped.",
                       vbExclamation, "Importing from " + Check1[2]->text());
        }
        if (!batches.TitleDone(succeeded)) break;
        DoEvents();
    }
    EndProgress(progress);
    batches.Finish();
    // The summary counts the lines reached, and as gone wrong every one of them that did not
    // stay: refused, stopped on, or lost with a batch.
    TabTried += tried;
    TabFailed += tried - batches.Stayed();

    if (ShowSummary)
        MsgBox("Tried to import " + QString::number(TabTried) + " title(s) from " +
                   Check1[2]->text() + "\r\n" + "Of those " + QString::number(TabFailed) +
                   " went wrong.",
               vbInformation);
}
