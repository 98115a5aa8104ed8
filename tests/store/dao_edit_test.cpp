// Writing the catalogue through recordsets and statements: counters, edits, the store's
// refusals and its cascades.

#include <sqlite3.h>

#include "store/catalogue.h"
#include "store/storetest.h"
#include "support/testsupport.h"

class DaoEditTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->openCatalogue();
    }
    void cleanup() { folder_.reset(); }

    void addNewShowsTheCounterBeforeUpdate() {
        AddTitle(*gDatabase, "First");
        AddTitle(*gDatabase, "Second");
        gDatabase->Execute("DELETE FROM title WHERE idcd = 2");
        auto rs = gDatabase->OpenRecordset("select * from title where idcd = 0", dbOpenDynaset);
        rs->AddNew();
        // A deleted counter is never given again.
        QCOMPARE(rs->Fields("idcd").Value(), QVariant(qint64(3)));
        rs->Fields("nmcd").SetValue(QString("Third"));
        rs->Fields("NumTracks").SetValue(12);
        rs->Fields("created").SetValue(QDate(2024, 2, 29));
        rs->Fields("idplatform").SetValue(1);
        rs->Update();
        // The new row joins the (finished) recordset, which stays where it was.
        QCOMPARE(rs->RecordCount(), 1L);
        QVERIFY(rs->IsEOF());
        rs->MoveFirst();
        QCOMPARE(rs->Fields("idcd").Value(), QVariant(qint64(3)));
        QCOMPARE(rs->Fields("visible").Value(), QVariant(qint64(1)));  // the store's default

        auto stored = gDatabase->OpenRecordset("select * from title where idcd = 3");
        QCOMPARE(stored->Fields("nmcd").Value().toString(), QString("Third"));
        QCOMPARE(stored->Fields("NumTracks").Value(), QVariant(qint64(12)));
        QCOMPARE(stored->Fields("created").Value().toString(), QString("2024-02-29"));

        // Without reading the counter the store assigns the same.
        auto table = gDatabase->OpenRecordset("title");
        table->AddNew();
        table->Fields("nmcd").SetValue(QString("Fourth"));
        table->Update();
        QCOMPARE(table->RecordCount(), 3L);
        QCOMPARE(RowCount("title where idcd = 4 and nmcd = 'Fourth'"), 1L);
    }

    void editWritesChangedFieldsOnly() {
        AddTitle(*gDatabase, "Before");
        AddTitle(*gDatabase, "Other");
        auto rs = gDatabase->OpenRecordset(kJoin);
        rs->Edit();
        rs->Fields("nmcd").SetValue(QString("After"));
        rs->Fields("title.rating").SetValue(5);
        // Meanwhile another statement changes a field the edit leaves alone.
        gDatabase->Execute("UPDATE title SET nrcds = 7 WHERE nmcd = 'Before'");
        rs->Update();
        QCOMPARE(rs->Fields("nmcd").Value().toString(), QString("After"));
        QCOMPARE(rs->Fields("rating").Value(), QVariant(qint64(5)));
        QCOMPARE(rs->Fields("nrcds").Value(), QVariant(qint64(7)));
        QCOMPARE(rs->Fields("nmplatform").Value().toString(), QString("Audio"));
        QCOMPARE(RowCount("title where nmcd = 'After' and nrcds = 7 and rating = 5"), 1L);
        QCOMPARE(RowCount("title where nmcd = 'Other'"), 1L);

        // Over a join a lookup's own field can be changed too.
        rs->Edit();
        rs->Fields("nmvendor").SetValue(QString("Someone"));
        rs->Update();
        QCOMPARE(RowCount("vendor where nmvendor = 'Someone' and idvendor = 1"), 1L);

        // Moving away drops an edit; CancelUpdate drops it in place.
        rs->Edit();
        rs->Fields("nmcd").SetValue(QString("Dropped"));
        rs->CancelUpdate();
        QCOMPARE(rs->Fields("nmcd").Value().toString(), QString("After"));
        QCOMPARE(ErrorNumber([&] { rs->Update(); }), int(jetUpdateWithoutAddNew));
    }

    void storeRefusesWhatJetRefused() {
        AddTitle(*gDatabase, "Known");
        gDatabase->Execute("UPDATE title SET TitleID = 1234");
        const QString tooLong(151, 'x');
        auto rs = gDatabase->OpenRecordset("select * from title");
        rs->Edit();
        rs->Fields("nmcd").SetValue(tooLong);
        QCOMPARE(ErrorNumber([&] { rs->Update(); }), int(jetFieldTooSmall));
        // The refused edit is still pending and can be corrected.
        rs->Fields("nmcd").SetValue(QString(150, 'x'));
        rs->Update();
        QCOMPARE(ErrorNumber([&] {
                     gDatabase->Execute("UPDATE title SET label = '" + QString(33, 'y') + "'");
                 }),
                 int(jetFieldTooSmall));
        QCOMPARE(ErrorNumber([&] { gDatabase->Execute("UPDATE title SET NumTracks = 256"); }),
                 int(jetDataConversion));
        QCOMPARE(ErrorNumber([&] { gDatabase->Execute("UPDATE title SET nrcds = -32768"); }), 0);
        QCOMPARE(ErrorNumber([&] {
                     gDatabase->Execute("INSERT INTO Tracks (idcd, TrackID) VALUES (1, 300)");
                 }),
                 int(jetDataConversion));

        auto adding = gDatabase->OpenRecordset("title");
        adding->AddNew();
        adding->Fields("TitleID").SetValue(1234);
        QCOMPARE(ErrorNumber([&] { adding->Update(); }), int(jetDuplicateValues));
        adding->CancelUpdate();
        QCOMPARE(adding->RecordCount(), 1L);
        QCOMPARE(ErrorNumber([&] {
                     gDatabase->Execute("INSERT INTO title (nmcd, TitleID) VALUES ('b', 1234)");
                 }),
                 int(jetDuplicateValues));
        // Titles without a TitleID do not collide.
        gDatabase->Execute("INSERT INTO title (nmcd) VALUES ('c'), ('d')");
        QCOMPARE(RowCount("title"), 3L);
    }

    void deletesCascade() {
        gDatabase->Execute("INSERT INTO platform (idplatform, nmplatform) VALUES (6, 'Mine')");
        gDatabase->Execute("INSERT INTO type (idtype, nmtype, idplatform) VALUES (50, 'T', 6)");
        gDatabase->Execute(
            "INSERT INTO specific (idspecific, nmspecific, idtype) VALUES "
            "(60, 'S', 50)");
        gDatabase->Execute(
            "INSERT INTO vendor (idvendor, nmvendor, idplatform) VALUES "
            "(70, 'V', 6)");
        AddTitle(*gDatabase, "Mine", 6, 50, 60, 70);
        AddTitle(*gDatabase, "Audio");
        gDatabase->Execute(
            "INSERT INTO Tracks (idcd, TrackID, TrackName) VALUES (2, 1, 'a'), (2, 2, 'b')");

        gDatabase->Execute("DELETE FROM platform WHERE idplatform = 6");
        QCOMPARE(gDatabase->RecordsAffected(), 1L);
        QCOMPARE(RowCount("title"), 1L);
        QCOMPARE(RowCount("type where idtype = 50"), 0L);
        QCOMPARE(RowCount("specific where idspecific = 60"), 0L);
        QCOMPARE(RowCount("vendor where idvendor = 70"), 0L);

        // Deleting through a join removes the title row; its tracks follow.
        auto rs = gDatabase->OpenRecordset(kJoin);
        rs->Delete();
        QCOMPARE(ErrorNumber([&] { rs->Fields("nmcd").Value(); }), 3167);
        QCOMPARE(rs->RecordCount(), 0L);
        rs->MoveNext();
        QVERIFY(rs->IsEOF());
        QCOMPARE(RowCount("title"), 0L);
        QCOMPARE(RowCount("Tracks"), 0L);
        QCOMPARE(RowCount("vendor where idvendor = 1"), 1L);
    }

    // Transactions nest as DAO's do; one the engine undid by itself only needs its level closed;
    // a full disk says why.
    void transactionsNestAndAFullDiskSaysWhy() {
        const auto names = [] {
            QStringList found;
            auto rs = gDatabase->OpenRecordset("select nmcd from title order by nmcd");
            for (; !rs->IsEOF(); rs->MoveNext()) found << rs->Fields(0).Value().toString();
            return found;
        };
        gDatabase->BeginTrans();
        AddTitle(*gDatabase, "A");
        gDatabase->BeginTrans();
        AddTitle(*gDatabase, "B");
        gDatabase->Rollback();
        gDatabase->BeginTrans();
        AddTitle(*gDatabase, "C");
        gDatabase->CommitTrans();
        QVERIFY(gDatabase->InTransaction());
        gDatabase->CommitTrans();
        QVERIFY(!gDatabase->InTransaction());
        QCOMPARE(names(), QStringList({"A", "C"}));

        gDatabase->BeginTrans();
        gDatabase->BeginTrans();
        AddTitle(*gDatabase, "D");
        gDatabase->CommitTrans();
        gDatabase->Rollback();
        QCOMPARE(names(), QStringList({"A", "C"}));
        QCOMPARE(Refusal([] { gDatabase->CommitTrans(); }),
                 "3034 You tried to commit or rollback a transaction without first beginning a "
                 "transaction.");

        // The engine ends a transaction by itself on some failures; what was begun inside it is
        // gone, Rollback closes the levels without a word, CommitTrans refuses.
        gDatabase->BeginTrans();
        gDatabase->BeginTrans();
        AddTitle(*gDatabase, "E");
        gDatabase->Execute("ROLLBACK");
        QCOMPARE(ErrorNumber([] { gDatabase->CommitTrans(); }), 3034);
        gDatabase->Rollback();
        gDatabase->Rollback();
        QCOMPARE(names(), QStringList({"A", "C"}));

        // The engine's own limit of the file's size stands in for a full disk.
        QCOMPARE(sqlite3_exec(gDatabase->Handle(), "PRAGMA max_page_count = 1", nullptr, nullptr,
                              nullptr),
                 SQLITE_OK);
        QCOMPARE(Refusal([] {
                     gDatabase->Execute("INSERT INTO title (nmcd, memo) VALUES ('F', '" +
                                        QString(100000, 'm') + "')");
                 }),
                 "3035 System resource exceeded. (No space left on device)");
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(DaoEditTest)
#include "dao_edit_test.moc"
