// The calendar destination: the due dates of the lent titles among those to export, as an
// iCalendar file that any desktop calendar reads.

#include <QCheckBox>
#include <QSaveFile>

#include "export/frmExport.h"
#include "loans/loancalendar.h"
#include "store/catalogue.h"
#include "toolkit/vb/msgbox.h"

void frmExport::ExportLoanCalendar() {
    QList<long> titles;
    if (ExportRecordset) {
        for (ExportRecordset->Requery(); !ExportRecordset->IsEOF(); ExportRecordset->MoveNext())
            titles << static_cast<long>(ExportRecordset->Fields("idcd").Value().toLongLong());
        ExportRecordset->Requery();
    }
    if (titles.isEmpty()) {
        MsgBox("No titles to export.", vbInformation, "Calendar of lent titles");
        return;
    }
    const QString name = AskSaveFileName("Enter a name for the calendar file", "ics",
                                         "Calendar files (*.ics)|*.ics");
    if (name.isEmpty()) return;
    ExportFileName = name;
    QByteArray calendar;
    try {
        calendar = loans::LoanCalendar(*gDatabase, titles, QDateTime::currentDateTimeUtc());
    } catch (const VbError& error) {
        MsgBox(error.Description, vbCritical, "Calendar of lent titles");
        return;
    }
    // The file is whole or it is not there: a calendar that reads half a file misses loans.
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(calendar) != calendar.size() ||
        !file.commit()) {
        MsgBox("Could not export to file " + name + "!", vbExclamation);
        return;
    }
    if (ShowSummary) {
        const int loans = calendar.count("BEGIN:VEVENT");
        MsgBox(QString::number(loans) + " due date(s) of lent titles have been written to file '" +
                   name + "'.",
               vbInformation, "Calendar of lent titles");
    }
}
