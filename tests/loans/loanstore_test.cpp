// The loan register in the catalogue: its tables made at start, the rules the file itself keeps,
// and lending and taking back through the store's routines.

#include "loans/loanstore.h"
#include "shell/frmMain.h"
#include "store/catalogue.h"
#include "store/storetest.h"

using namespace loans;

class LoanStoreTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->openCatalogue();
    }

    void cleanup() {
        folder_->closeCatalogue();
        folder_.reset();
    }

    void tablesAreMadeAtStartWhenMissing() {
        QVERIFY(TablesMissing(*gDatabase));
        // A file that has the tables but lost an index gets it back; the rows stay.
        MakeTables(*gDatabase);
        QVERIFY(!TablesMissing(*gDatabase));
        LendTitles(*gDatabase, {AddTitle(*gDatabase, "Kept")}, {"Anna", QDate(2026, 1, 1), {}, {}});
        gDatabase->Execute("DROP INDEX loan_open_by_title");
        QVERIFY(TablesMissing(*gDatabase));
        folder_->closeCatalogue();

        QVERIFY(StartProgram());
        QVERIFY(!TablesMissing(*gDatabase));
        QCOMPARE(RowCount("loan where returned is null"), 1L);
        QCOMPARE(ErrorNumber([] {
                     LendTitles(*gDatabase, {Scalar("select idcd from title").toLongLong()},
                                {"Bert", QDate(2026, 1, 2), {}, {}});
                 }),
                 int(jetDuplicateValues));
        EndProgram();
    }

    void catalogueKeepsTheRulesAgainstPlainStatements() {
        MakeTables(*gDatabase);
        const long one = AddTitle(*gDatabase, "One");
        AddTitle(*gDatabase, "Two");
        gDatabase->Execute("INSERT INTO borrower (nmborrower) VALUES ('Anna')");
        gDatabase->Execute("INSERT INTO borrower (nmborrower) VALUES ('Idle')");
        const QString lend = "INSERT INTO loan (idcd, idborrower, lent) VALUES (" +
                             QString::number(one) + ", 1, '2026-01-01')";
        gDatabase->Execute(lend);

        // One open loan per title; returned loans stay beside it as history.
        QCOMPARE(ErrorNumber([&] { gDatabase->Execute(lend); }), int(jetDuplicateValues));
        gDatabase->Execute("UPDATE loan SET returned = '2026-01-05'");
        gDatabase->Execute(lend);
        QCOMPARE(RowCount("loan where idcd = " + QString::number(one)), 2L);
        // Names are unique in the catalogue's text order.
        QCOMPARE(ErrorNumber([] {
                     gDatabase->Execute("INSERT INTO borrower (nmborrower) VALUES ('ANNA')");
                 }),
                 int(jetDuplicateValues));
        // A loan needs a title and a borrower, and its dates run forward.
        QCOMPARE(ErrorNumber([] {
                     gDatabase->Execute(
                         "INSERT INTO loan (idcd, idborrower, lent) VALUES (9999, 1, "
                         "'2026-01-01')");
                 }),
                 3201);
        QVERIFY(ErrorNumber([&] {
                    gDatabase->Execute("UPDATE loan SET due = '2025-12-31' WHERE returned IS NULL");
                }) != 0);

        // A borrower with loans stays; one without goes.
        QVERIFY(ErrorNumber(
                    [] { gDatabase->Execute("DELETE FROM borrower WHERE idborrower = 1"); }) != 0);
        gDatabase->Execute("DELETE FROM borrower WHERE idborrower = 2");
        QCOMPARE(RowCount("borrower"), 1L);
        // A deleted title takes its loans along, and then the borrower may go.
        gDatabase->Execute("DELETE FROM title WHERE idcd = " + QString::number(one));
        QCOMPARE(RowCount("loan"), 0L);
        gDatabase->Execute("DELETE FROM borrower WHERE idborrower = 1");
        QCOMPARE(RowCount("borrower"), 0L);
    }

    void lendsAndTakesBackAllOrNone() {
        MakeTables(*gDatabase);
        const long a = AddTitle(*gDatabase, "A"), b = AddTitle(*gDatabase, "B"),
                   c = AddTitle(*gDatabase, "C"), d = AddTitle(*gDatabase, "D");
        const QDate today(2026, 3, 10);

        LendTitles(*gDatabase, {a, b}, {" Anna ", today.addDays(-40), today.addDays(-10), "It's"});
        LendTitles(*gDatabase, {c}, {"anna", today, today.addDays(30), {}});
        QCOMPARE(BorrowerNames(*gDatabase), QStringList({"Anna"}));
        QCOMPARE(TitlesOut(*gDatabase, {a, b, c, d}), QList<long>({a, b, c}));
        QCOMPARE(LoanCountText(CountOpenLoans(*gDatabase, today)),
                 QString("3 discs lent out, 2 overdue"));

        // One title out already: nothing of the run is written, not even the new borrower.
        QCOMPARE(ErrorNumber([&] {
                     LendTitles(*gDatabase, {d, a}, {"Bert", today, {}, {}});
                 }),
                 int(jetDuplicateValues));
        QCOMPARE(RowCount("loan"), 3L);
        QCOMPARE(BorrowerId(*gDatabase, "Bert"), 0L);
        QVERIFY(!gDatabase->InTransaction());

        // Taking back: only the open loans of the titles asked for; the rest stays out.
        ReturnTitles(*gDatabase, {a, b, d}, today);
        QCOMPARE(TitlesOut(*gDatabase, {a, b, c, d}), QList<long>({c}));
        QCOMPARE(LoanCountText(CountOpenLoans(*gDatabase, today.addDays(31))),
                 QString("1 disc lent out, 1 overdue"));
        // A return before the lending day is refused and leaves the loan open.
        QVERIFY(ErrorNumber([&] { ReturnTitles(*gDatabase, {c}, today.addDays(-1)); }) != 0);
        QCOMPARE(TitlesOut(*gDatabase, {c}), QList<long>({c}));

        // The history: newest first, every field back as written.
        LendTitles(*gDatabase, {a}, {"Bert", today.addDays(1), {}, {}});
        const std::vector<LoanEntry> history = LoanHistory(*gDatabase, a);
        QCOMPARE(history.size(), size_t(2));
        QVERIFY(history[0].borrower == "Bert" && history[0].due.isNull());
        const LoanEntry& first = history[1];
        QCOMPARE(QVariantList({first.borrower, first.lent, first.due, first.returned, first.note}),
                 QVariantList({"Anna", today.addDays(-40), today.addDays(-10), today, "It's"}));

        // Runs longer than one statement takes are lent whole.
        gDatabase->Execute(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1200) "
            "INSERT INTO title (nmcd, idvendor, idplatform, idtype, idspecific, idmediatype) "
            "SELECT 'Many ' || i, 1, 1, 1, 1, 1 FROM n");
        QList<long> many;
        for (auto rows = gDatabase->OpenRecordset("select idcd from title where nmcd like 'Many*'");
             !rows->IsEOF(); rows->MoveNext())
            many << rows->Fields(0).Value().toLongLong();
        QCOMPARE(many.size(), 1200);
        LendTitles(*gDatabase, many, {"Carl", today, {}, {}});
        QCOMPARE(TitlesOut(*gDatabase, many).size(), many.size());
        ReturnTitles(*gDatabase, many, today);
        QCOMPARE(TitlesOut(*gDatabase, many).size(), 0);
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(LoanStoreTest)
#include "loanstore_test.moc"
