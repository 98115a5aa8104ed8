// The database engine: the catalogue file itself (opening, password, exclusive hold, closing),
// and the Jet files of the CD players read through it, refused when damaged and changed only
// through a writer.

#include "jet/jet.h"
#include "store/catalogue.h"
#include "store/dao.h"
#include "store/jetdatabase.h"
#include "support/testsupport.h"

namespace {
// A function, not a constant: the password is itself a constant of another file.
QString Connect() {
    return ";pwd=" + kDatabasePassword;
}

QString Fixture(const QString& name) {
    return FixturePath("deluxe/" + name);
}

// Records what reaches the file's writer; refuses when told to.
class RecordingWriter : public JetWriter {
  public:
    explicit RecordingWriter(QList<JetRowChange>* changes, bool* refuse)
        : changes_(changes), refuse_(refuse) {}
    void Apply(const JetRowChange& change) override {
        if (*refuse_) throw VbError(3051, "refused");
        changes_->append(change);
    }

  private:
    QList<JetRowChange>* changes_;
    bool* refuse_;
};

}  // namespace

class DaoEngineTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

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
        QCOMPARE(ErrorNumber([&] { gDatabase->Execute("DELETE FROM type"); }), 3420);

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

    void damagedFilesAreRefusedWithJetsErrors() {
        const QString zero = dir.filePath("zero.mdb");
        WriteBytes(zero, {});
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(zero); }), 3343);

        const QString truncated = dir.filePath("truncated.mdb");
        WriteBytes(truncated, ReadBytes(Fixture("cd_pk.mdb")).left(5000));
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(truncated); }), 3049);

        // One byte of the system table's definition that made libmdb read through a null map.
        QByteArray damagedBytes = ReadBytes(Fixture("cd_empty.mdb"));
        QVERIFY(damagedBytes.size() > 8247);
        damagedBytes[8247] = 122;
        const QString damaged = dir.filePath("damaged.mdb");
        WriteBytes(damaged, damagedBytes);
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(damaged); }), 3049);
        QCOMPARE(ErrorNumber([&] { jet::Writer writer(damaged); }), 3049);

        const QString text = dir.filePath("notes.mdb");
        WriteBytes(text, "these are not the pages of a database\n");
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(text); }), 3343);
        QCOMPARE(ErrorNumber([&] { DBEngine::OpenDatabase(dir.filePath("absent.mdb")); }), 3024);
    }

    void changesGoOnlyThroughAWriter() {
        auto readOnly = DBEngine::OpenDatabase(Fixture("cd_pk.mdb"));
        auto titles = readOnly->OpenRecordset("Titles");
        QCOMPARE(ErrorNumber([&] { titles->AddNew(); }), 3027);
        QCOMPARE(ErrorNumber([&] { readOnly->Execute("delete from Titles"); }), 3027);

        QList<JetRowChange> changes;
        bool refuse = false;
        SetJetWriterFactory(
            [&](const QString&) { return std::make_unique<RecordingWriter>(&changes, &refuse); });
        auto database = DBEngine::OpenDatabase(Fixture("cd_pk.mdb"));
        auto table = database->OpenRecordset("Titles");
        table->AddNew();
        table->Fields("TitleID").SetValue(77);
        table->Fields("Artist").SetValue("New artist");
        table->Update();
        auto found = database->OpenRecordset("select * from Titles where TitleID = 1001");
        found->Edit();
        found->Fields("Title").SetValue("Renamed");
        found->Update();
        QCOMPARE(changes.size(), 2);
        QCOMPARE(changes[0].kind, JetRowChange::Added);
        QCOMPARE(changes[0].after.value(0).toInt(), 77);
        QCOMPARE(changes[1].kind, JetRowChange::Changed);
        QCOMPARE(changes[1].before.value(2).toString(), QString("The Dark Side of the Moon"));
        QCOMPARE(changes[1].after.value(2).toString(), QString("Renamed"));

        // A refusal of the writer leaves the copy as it was.
        refuse = true;
        found->Edit();
        found->Fields("Title").SetValue("Refused");
        QCOMPARE(ErrorNumber([&] { found->Update(); }), 3051);
        auto again = database->OpenRecordset("select * from Titles where TitleID = 1001");
        QCOMPARE((*again)["Title"].toString(), QString("Renamed"));
        SetJetWriterFactory({});
        // Nothing reached the file itself.
        auto reread = DBEngine::OpenDatabase(Fixture("cd_pk.mdb"));
        QCOMPARE(reread->OpenRecordset("Titles")->RecordCount(), 4L);
    }
};

VELMORA_TEST_MAIN(DaoEngineTest)
#include "dao_engine_test.moc"
