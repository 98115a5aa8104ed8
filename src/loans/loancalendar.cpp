#include "loans/loancalendar.h"

#include "loans/loanstore.h"
#include "store/dao.h"
#include "toolkit/vb/vbruntime.h"

namespace loans {

namespace {

const qsizetype kMaximumOctets = 75;

QString DateValue(const QDate& date) {
    return date.toString("yyyyMMdd");
}

}  // namespace

QString CalendarText(const QString& text) {
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar c : text) {
        if (c == '\\' || c == ';' || c == ',')
            escaped += QString('\\') + c;
        else if (c == '\n')
            escaped += "\\n";
        else if (c != '\r')
            escaped += c;
    }
    return escaped;
}

QByteArray FoldedLine(const QString& line) {
    const QByteArray octets = line.toUtf8();
    QByteArray folded;
    qsizetype start = 0;
    // The first line holds 75 octets, each continuation a blank and 74.
    qsizetype room = kMaximumOctets;
    while (octets.size() - start > room) {
        qsizetype end = start + room;
        // Never between the octets of one UTF-8 character.
        while (end > start && (static_cast<unsigned char>(octets[end]) & 0xC0) == 0x80) --end;
        folded += octets.mid(start, end - start) + "\r\n ";
        start = end;
        room = kMaximumOctets - 1;
    }
    return folded + octets.mid(start) + "\r\n";
}

QByteArray LoanCalendar(Database& database, const QList<long>& titles, const QDateTime& stamp) {
    QStringList chosen;
    for (const long id : titles) chosen << QString::number(id);
    auto records = database.OpenRecordset(
        "select loan.idloan, loan.lent, loan.due, loan.note, title.nmcd, borrower.nmborrower, "
        "borrower.contact from loan, title, borrower where loan.idcd = title.idcd and "
        "loan.idborrower = borrower.idborrower and loan.returned is null and loan.due is not "
        "null" +
            (titles.isEmpty() ? QString() : " and loan.idcd in (" + chosen.join(", ") + ")") +
            " order by loan.due, title.nmcd",
        dbOpenSnapshot);
    const QString stampValue = stamp.toUTC().toString("yyyyMMdd'T'HHmmss'Z'");
    QByteArray calendar = FoldedLine("BEGIN:VCALENDAR") + FoldedLine("VERSION:2.0") +
                          FoldedLine("PRODID:-//" + kMakerName + "//Velmora loans//EN") +
                          FoldedLine("CALSCALE:GREGORIAN") + FoldedLine("METHOD:PUBLISH");
    for (; !records->IsEOF(); records->MoveNext()) {
        const QString id = NzText(records->Fields(0).Value());
        const QDate lent = TextDate(NzText(records->Fields(1).Value()));
        const QDate due = TextDate(NzText(records->Fields(2).Value()));
        const QString note = NzText(records->Fields(3).Value());
        const QString title = NzText(records->Fields(4).Value());
        const QString borrower = NzText(records->Fields(5).Value());
        const QString contact = NzText(records->Fields(6).Value());
        QString description = "Lent to " + borrower + " on " + DateText(lent) + ".";
        if (!contact.isEmpty()) description += "\n" + contact;
        if (!note.isEmpty()) description += "\n" + note;
        const QString summary = "Due back: " + title + " (" + borrower + ")";
        for (const QString& line : QStringList{
                 "BEGIN:VEVENT", "UID:loan-" + id + "@velmora.invalid", "DTSTAMP:" + stampValue,
                 "DTSTART;VALUE=DATE:" + DateValue(due),
                 "DTEND;VALUE=DATE:" + DateValue(due.addDays(1)),
                 "SUMMARY:" + CalendarText(summary), "DESCRIPTION:" + CalendarText(description),
                 "TRANSP:TRANSPARENT", QString("BEGIN:VALARM"), QString("ACTION:DISPLAY"),
                 "DESCRIPTION:" + CalendarText(summary), QString("TRIGGER;RELATED=START:PT9H"),
                 QString("END:VALARM"), QString("END:VEVENT")})
            calendar += FoldedLine(line);
    }
    return calendar + FoldedLine("END:VCALENDAR");
}

}  // namespace loans
