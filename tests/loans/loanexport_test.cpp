// The loans on their way out: the calendar of due dates, read back by a parser of RFC 5545 of
// our own and by libical where it is installed, and the HTML page's "lent to" lines.

#include <QCheckBox>
#include <QRadioButton>

#include "export/exporttest.h"
#include "export/frmExport.h"
#include "loans/loancalendar.h"
#include "loans/loanstore.h"
#include "shell/frmMain.h"
#include "toolkit/vb/guardeddialog.h"

#ifdef VELMORA_HAVE_LIBICAL
#include <libical/ical.h>
#endif

namespace {

// A calendar as RFC 5545 reads it: lines unfolded, each a name (with its parameters) and a
// value with the escapes undone.
struct ContentLine {
    QString name;
    QString value;
};

QList<ContentLine> ReadCalendar(const QByteArray& octets) {
    QList<ContentLine> lines;
    // Every line ends in CRLF and holds at most 75 octets.
    if (!octets.endsWith("\r\n") || octets.count("\r\n") != octets.count('\n')) return {};
    QByteArray unfolded;
    for (const QByteArray& physical :
         QByteArray(octets).replace("\r\n", "\n").chopped(1).split('\n')) {
        if (physical.size() > 75) return {};
        if (physical.startsWith(' '))
            unfolded += physical.mid(1);
        else
            unfolded += (unfolded.isEmpty() ? "" : "\n") + physical;
    }
    for (const QString& line : QString::fromUtf8(unfolded).split('\n')) {
        const qsizetype colon = line.indexOf(':');
        QString value;
        for (qsizetype at = colon + 1; at < line.size(); ++at) {
            if (line[at] == '\\' && at + 1 < line.size()) {
                ++at;
                value += line[at] == 'n' || line[at] == 'N' ? QChar('\n') : line[at];
            } else {
                value += line[at];
            }
        }
        lines.append({line.left(colon), value});
    }
    return lines;
}

// The events of a calendar, each as its properties by name; empty when the nesting is wrong.
QList<QHash<QString, QString>> Events(const QList<ContentLine>& lines) {
    QList<QHash<QString, QString>> events;
    QStringList open;
    for (const ContentLine& line : lines) {
        if (line.name == "BEGIN") {
            open << line.value;
            if (line.value == "VEVENT") events.append(QHash<QString, QString>());
        } else if (line.name == "END") {
            if (open.isEmpty() || open.takeLast() != line.value) return {};
        } else if (open.value(open.size() - 1) == "VEVENT") {
            events.last().insert(line.name, line.value);
        }
    }
    if (!open.isEmpty()) return {};
    return events;
}

}  // namespace

class LoanExportTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        dialogs_ = std::make_unique<ScriptedDialogs>();
        QVERIFY(folder_->startProgramWith([] { exporttest::AddTitles(); }));
        const QDate today = QDate::currentDate();
        loans::LendTitles(
            *gDatabase, {1},
            {"Anna; Sister, older", today, today.addDays(14),
             QString("Bring it back \\ please\nin its case ") + QString(40, QChar(0x00E9))});
        loans::LendTitles(*gDatabase, {3}, {"Bert", today, {}, {}});
        loans::LendTitles(*gDatabase, {5}, {"Carl", today.addDays(-20), today.addDays(-5), {}});
        loans::ReturnTitles(*gDatabase, {5}, today);
        loans::LendTitles(*gDatabase, {5}, {"Dora", today, today.addDays(3), {}});
    }

    void cleanup() {
        EndProgram();
        dialogs_.reset();
        folder_.reset();
    }

    void calendarOfDueDatesReadsBack() {
        const QString path = folder_->file("loans.ics");
        GuardedDialog<frmExport> form(gMainForm);
        form->Form_Load();
        form->Option1[2]->setChecked(true);
        form->Check1[0]->setChecked(false);
        form->chkCalendar->setChecked(true);
        dialogs_->answerFile(path);
        dialogs_->answerMsgBox(vbOK);
        form->cmdOK_Click();
        QCOMPARE(dialogs_->prompts(),
                 QStringList(
                     {"2 due date(s) of lent titles have been written to file '" + path + "'."}));

        const QByteArray octets = ReadBytes(path);
        const QList<ContentLine> lines = ReadCalendar(octets);
        QVERIFY(!lines.isEmpty());
        QCOMPARE(lines.first().name + ":" + lines.first().value, QString("BEGIN:VCALENDAR"));
        // Each event carries its reminder.
        QCOMPARE(octets.count("BEGIN:VALARM\r\n"), 2);
        // Bert's title has no due date and Carl's loan is history: two events, by due date.
        const QList<QHash<QString, QString>> events = Events(lines);
        QCOMPARE(events.size(), 2);
        const QDate today = QDate::currentDate();
        QCOMPARE(events[0]["SUMMARY"], QString("Due back: Nosferatu (Dora)"));
        QCOMPARE(events[0]["DTSTART;VALUE=DATE"], today.addDays(3).toString("yyyyMMdd"));
        QCOMPARE(events[0]["DTEND;VALUE=DATE"], today.addDays(4).toString("yyyyMMdd"));
        QCOMPARE(events[1]["SUMMARY"], QString("Due back: Homogénic (Anna; Sister, older)"));
        QCOMPARE(events[1]["DESCRIPTION"],
                 "Lent to Anna; Sister, older on " + loans::DateText(today) +
                     ".\nBring it back \\ please\nin its case " + QString(40, QChar(0x00E9)));
        QVERIFY(events[0]["UID"] != events[1]["UID"] && events[1].contains("DTSTAMP"));
        // Our reader undoes any escape: what must be escaped is checked on its own.
        QCOMPARE(loans::CalendarText("a,b;c\\d\r\ne"), QString("a\\,b\\;c\\\\d\\ne"));

#ifdef VELMORA_HAVE_LIBICAL
        // A reader that is not ours: the calendar a desktop calendar would see.
        icalcomponent* calendar = icalparser_parse_string(octets.constData());
        QVERIFY(calendar);
        QCOMPARE(icalcomponent_count_errors(calendar), 0);
        QCOMPARE(icalcomponent_count_components(calendar, ICAL_VEVENT_COMPONENT), 2);
        icalcomponent* first = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
        const icaltimetype start = icalcomponent_get_dtstart(first);
        QVERIFY(start.is_date);
        QCOMPARE(QDate(start.year, start.month, start.day), today.addDays(3));
        icalcomponent* second = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT);
        QCOMPARE(QString::fromUtf8(icalcomponent_get_description(second)),
                 events[1]["DESCRIPTION"]);
        icalcomponent_free(calendar);
#endif
    }

    void htmlPageSaysWhoHasATitle() {
        const QString path = folder_->file("titles.html");
        GuardedDialog<frmExport> form(gMainForm);
        form->Form_Load();
        form->Option1[2]->setChecked(true);
        form->chkLentTo->setChecked(true);
        form->OpenHtmlAfterExport = false;
        dialogs_->answerFile(path);
        dialogs_->answerMsgBox(vbOK);
        form->cmdOK_Click();
        const QString page = QString::fromUtf8(ReadBytes(path));
        const QDate today = QDate::currentDate();
        QVERIFY(page.contains("<small><i>lent to Anna; Sister, older until " +
                              loans::DateText(today.addDays(14)) + "</i></small>"));
        QVERIFY(page.contains("<i>lent to Dora until "));
        QCOMPARE(page.count("lent to "), 3);
        // The line follows its own title's row.
        QVERIFY(page.indexOf("Café Tycoon") < page.indexOf("lent to Bert"));

        // Without the box the page is the design's.
        GuardedDialog<frmExport> plain(gMainForm);
        plain->Form_Load();
        plain->Option1[2]->setChecked(true);
        plain->OpenHtmlAfterExport = false;
        dialogs_->answerFile(path);
        dialogs_->answerMsgBox(vbYes);
        dialogs_->answerMsgBox(vbOK);
        plain->cmdOK_Click();
        QVERIFY(!QString::fromUtf8(ReadBytes(path)).contains("lent to"));
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
    std::unique_ptr<ScriptedDialogs> dialogs_;
};

VELMORA_TEST_MAIN(LoanExportTest)
#include "loanexport_test.moc"
