#include <QFile>

#include "store/dao.h"
#include "store/jetdatabase.h"
#include "store/jetwriter.h"
#include "support/testsupport.h"

namespace {

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

class JetDatabaseTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

  private slots:
    void theDeluxeJoinReadsInItsOrder() {
        auto database = DBEngine::OpenDatabase(Fixture("cd_pk.mdb"));
        auto rows = database->OpenRecordset(
            "select * from Titles, Tracks where Titles.TitleID = Tracks.TitleID order by Artist, "
            "Titles.TitleID, TrackID");
        QStringList seen;
        for (; !rows->IsEOF(); rows->MoveNext())
            seen << (*rows)["Titles.TitleID"].toString() + " " + (*rows)["Artist"].toString() +
                        " " + (*rows)["TrackID"].toString() + " " + (*rows)["TrackName"].toString();
        QCOMPARE(seen, QStringList({"2147483647 Artist, with \"quotes\" 0 Only track",
                                    "1002 Bj\u00f6rk 0 Hunter", "1002 Bj\u00f6rk 1 J\u00f3ga",
                                    "-5 Ennio Morricone 0 C\u2019era una volta il West",
                                    "-5 Ennio Morricone 1 L\u2019uomo dell\u2019armonica",
                                    "1001 Pink Floyd 0 Speak to Me", "1001 Pink Floyd 1 Breathe",
                                    "1001 Pink Floyd 2 On the Run"}));
        // The jump over a title's track rows lands where the import expects it.
        rows->MoveFirst();
        rows->MoveNext();
        rows->SetAbsolutePosition(rows->AbsolutePosition() + 2 - 1);
        QCOMPARE((*rows)["TrackName"].toString(), QString("J\u00f3ga"));

        auto titles = database->OpenRecordset("Titles");
        QCOMPARE(titles->RecordCount(), 4L);
        QCOMPARE(titles->Fields("Artist").Size(), 255);
        QCOMPARE(titles->Fields("NumTracks").Size(), 2);
        auto maximum = database->OpenRecordset("select * from Titles where TitleID = 2147483647");
        QCOMPARE((*maximum)["NumTracks"].toInt(), 1);

        auto empty = DBEngine::OpenDatabase(Fixture("cd_empty.mdb"));
        QVERIFY(empty
                    ->OpenRecordset("select * from Titles, Tracks where Titles.TitleID = "
                                    "Tracks.TitleID")
                    ->IsEOF());
        // A Jet 3 file reads as well.
        auto jet3 = DBEngine::OpenDatabase(Fixture("indexTestV1997.mdb"));
        QVERIFY(!jet3->OpenRecordset("Table1")->IsEOF());
        QCOMPARE(jetfile::JetVersion(Fixture("indexTestV1997.mdb")), 3);
        QCOMPARE(jetfile::JetVersion(Fixture("cd_pk.mdb")), 4);
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
        QCOMPARE(changes[0].table, QString("Titles"));
        QCOMPARE(changes[0].columns, QStringList({"TitleID", "Artist", "Title", "NumTracks"}));
        QCOMPARE(changes[0].after.value(0).toInt(), 77);
        QVERIFY(changes[0].after.value(3).isNull());
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

VELMORA_TEST_MAIN(JetDatabaseTest)
#include "jetdatabase_test.moc"
