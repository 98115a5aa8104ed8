// The catalogue file itself: opening, password, exclusive hold, closing, compaction and the
// column widths the program reads at start.

#include <QFile>

#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/passwordcheck.h"
#include "store/storetest.h"
#include "support/testsupport.h"

namespace {
// A function, not a constant: the password is itself a constant of another file.
QString Connect() {
    return ";pwd=" + kDatabasePassword;
}
}  // namespace

class DaoEngineTest : public QObject {
    Q_OBJECT

  private slots:
    void openingRefusals() {
        TempProgramFolder folder;
        folder.installCatalogue();
        const QString path = folder.file("data.gdb");
        QCOMPARE(Refusal([&] {
                     DBEngine::OpenDatabase(folder.file("missing.gdb"), true, false, Connect());
                 }),
                 "3024 Could not find file '" + folder.file("missing.gdb") + "'.");
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(path, true, false, ";pwd=wrong"); }),
                 int(jetNotValidPassword));
        QCOMPARE(DBEngine::Errors().front().Description, QString("Not a valid password."));
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(path, true, false); }),
                 int(jetNotValidPassword));

        // The guarded file is no database until its signature is repaired.
        const auto sign = [&](const char* mark) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(14) && file.write(mark) == 1);
        };
        sign("F");
        QCOMPARE(Refusal([&] { DBEngine::OpenDatabase(path, true, false, Connect()); }),
                 "3343 Unrecognized database format '" + path + "'.");
        sign("3");
        QVERIFY(DBEngine::OpenDatabase(path, true, false, Connect())->IsOpen());
    }

    void exclusiveHoldUntilClose() {
        TempProgramFolder folder;
        folder.openCatalogue();
        QCOMPARE(gDatabase->Name(), folder.file("data.gdb"));
        QVERIFY(gDatabase->Handle());
        const QString path = gDatabasePath;
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(path, false, false, Connect()); }),
                 int(jetExclusivelyLocked));
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(path, true, true, Connect()); }),
                 int(jetExclusivelyLocked));

        // Recordsets left open lose their statements; the file is free at once.
        auto rs = gDatabase->OpenRecordset("select * from type order by idtype");
        gDatabase->Close();
        QVERIFY(!gDatabase->IsOpen());
        QVERIFY(!gDatabase->Handle());
        QCOMPARE(rs->Fields("nmtype").Value().toString(), QString("Pop"));
        QCOMPARE(ErrorNumber([&] { rs->MoveNext(); }), 3420);
        QCOMPARE(ErrorNumber([&] { rs->Requery(); }), 3420);
        QCOMPARE(ErrorNumber([&] { gDatabase->Execute("DELETE FROM type"); }), 3420);
        QCOMPARE(ErrorNumber([&] { gDatabase->OpenRecordset("type"); }), 3420);

        auto second = DBEngine::OpenDatabase(path, true, false, Connect());
        QCOMPARE(second->OpenRecordset("type")->RecordCount(), 17L);
        second->Close();
        rs.reset();

        // A file opened for reading only refuses edits.
        auto reading = DBEngine::OpenDatabase(path, false, true, Connect());
        auto types = reading->OpenRecordset("type");
        QVERIFY(!types->Updatable());
        QCOMPARE(ErrorNumber([&] { types->Edit(); }), int(jetObjectReadOnly));
        QCOMPARE(ErrorNumber([&] { reading->Execute("DELETE FROM type"); }),
                 int(jetObjectReadOnly));
    }

    void compactionKeepsRowsAndPassword() {
        TempProgramFolder folder;
        folder.openCatalogue();
        AddTitle(*gDatabase, "Kept");
        gDatabase->Close();
        const QString target = folder.file("data.compacted");
        QCOMPARE(ErrorNumber([&] {
                     DBEngine::CompactDatabase(gDatabasePath, target, QString(), dbVersion40,
                                               ";pwd=wrong");
                 }),
                 int(jetNotValidPassword));
        QVERIFY(!QFile::exists(target));
        DBEngine::CompactDatabase(gDatabasePath, target,
                                  ";LANGID=0x0409;CP=1252;COUNTRY=0;pw=" + kDatabasePassword,
                                  dbVersion40, Connect());
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(target, true, false, ";pwd=x"); }),
                 int(jetNotValidPassword));
        {
            auto compacted = DBEngine::OpenDatabase(target, true, false, Connect());
            auto rs = compacted->OpenRecordset("select * from title");
            QCOMPARE(rs->Fields("nmcd").Value().toString(), QString("Kept"));
        }
        // Like Jet, compaction does not overwrite.
        QCOMPARE(Refusal([&] {
                     DBEngine::CompactDatabase(gDatabasePath, target, QString(), dbVersion40,
                                               Connect());
                 }),
                 QString::number(jetFileAlreadyExists) + " Database already exists.");
        QCOMPARE(DBEngine::Errors().size(), 1);
        QCOMPARE(DBEngine::Errors().front().Number, int(jetFileAlreadyExists));
    }

    void passwordCheckIsWritten() {
        TempProgramFolder folder;
        const QString path = folder.file("new.gdb");
        sqlite3* db = nullptr;
        QCOMPARE(sqlite3_open(path.toUtf8().constData(), &db), SQLITE_OK);
        sqlite3_exec(db, "CREATE TABLE t (a TEXT(5))", nullptr, nullptr, nullptr);
        sqlite3_close(db);
        // Without a check any password opens the file.
        QVERIFY(DBEngine::OpenDatabase(path, true, false, ";pwd=anything")->IsOpen());
        DBEngine::SetDatabasePassword(path, "secret");
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(path, true, false, ";pwd=other"); }),
                 int(jetNotValidPassword));
        QVERIFY(DBEngine::OpenDatabase(path, true, false, ";pwd=secret")->IsOpen());
    }

    void fieldSizesOfTheEmptyJoin() {
        TempProgramFolder folder;
        folder.openCatalogue();
        AddTitle(*gDatabase, "Not read");
        ReadFieldSizes();
        QCOMPARE(gLenLabel, 32);
        QCOMPARE(gLenTitle, 150);
        QCOMPARE(gLenVendor, 100);
        QCOMPARE(gLenPlatform, 50);
        QCOMPARE(gLenType, 50);
        QCOMPARE(gLenSpecific, 50);
        QCOMPARE(gLenMediatype, 50);
        QCOMPARE(gLenTrackName, 150);

        auto rs = gDatabase->OpenRecordset("select * from title where idcd = 0");
        QVERIFY(rs->IsEOF());
        QCOMPARE(rs->Fields("memo").Size(), 0);
        QCOMPARE(rs->Fields("NumTracks").Size(), 1);
        QCOMPARE(rs->Fields("nrcds").Size(), 2);
        QCOMPARE(rs->Fields("idvendor").Size(), 4);
        QCOMPARE(rs->Fields("price").Size(), 8);
        QCOMPARE(rs->Fields("visible").Size(), 1);
        QCOMPARE(rs->Fields("created").Size(), 8);
    }
};

VELMORA_TEST_MAIN(DaoEngineTest)
#include "dao_engine_test.moc"
