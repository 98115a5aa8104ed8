// The loans on their way out: the calendar of due dates, read back by libical, a reader that is
// not ours, and the HTML page's "lent to" lines.

#include <libical/ical.h>

#include <QCheckBox>
#include <QRadioButton>

#include "export/exporttest.h"
#include "export/frmExport.h"
#include "loans/loancalendar.h"
#include "loans/loanstore.h"
#include "shell/frmMain.h"
#include "toolkit/vb/guardeddialog.h"

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

        // Every line ends in CRLF and holds at most 75 octets, folded where it would not.
        const QByteArray octets = ReadBytes(path);
        QVERIFY(octets.endsWith("\r\n") && octets.count("\r\n") == octets.count('\n'));
        for (const QByteArray& line : octets.split('\n')) QVERIFY(line.size() <= 76);
        QVERIFY(octets.contains("\r\n "));
        QCOMPARE(octets.count("BEGIN:VALARM\r\n"), 2);

        // Bert's title has no due date and Carl's loan is history: two events, by due date.
        icalcomponent* calendar = icalparser_parse_string(octets.constData());
        QVERIFY(calendar);
        QCOMPARE(icalcomponent_count_errors(calendar), 0);
        QCOMPARE(icalcomponent_count_components(calendar, ICAL_VEVENT_COMPONENT), 2);
        const QDate today = QDate::currentDate();
        icalcomponent* first = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
        icalcomponent* second = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT);
        auto date = [](icaltimetype time) {
            return time.is_date ? QDate(time.year, time.month, time.day) : QDate();
        };
        QCOMPARE(QString::fromUtf8(icalcomponent_get_summary(first)),
                 QString("Due back: Nosferatu (Dora)"));
        QCOMPARE(date(icalcomponent_get_dtstart(first)), today.addDays(3));
        QCOMPARE(date(icalcomponent_get_dtend(first)), today.addDays(4));
        QCOMPARE(QString::fromUtf8(icalcomponent_get_summary(second)),
                 QString("Due back: Homogénic (Anna; Sister, older)"));
        QCOMPARE(QString::fromUtf8(icalcomponent_get_description(second)),
                 "Lent to Anna; Sister, older on " + loans::DateText(today) +
                     ".\nBring it back \\ please\nin its case " + QString(40, QChar(0x00E9)));
        QVERIFY(QByteArray(icalcomponent_get_uid(first)) != icalcomponent_get_uid(second));
        icalcomponent_free(calendar);
        // libical reads leniently what should have been escaped: that is checked on its own.
        QCOMPARE(loans::CalendarText("a,b;c\\d\r\ne"), QString("a\\,b\\;c\\\\d\\ne"));
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
