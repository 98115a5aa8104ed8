// Text compares as Jet compares it: without regard to case in any script, accented letters
// beside their base letters, in the catalogue's statements, its indexes, the list's own sorting,
// and in catalogues made before the order existed; and Jet's like patterns.

#include <sqlite3.h>

#include "shell/frmMain.h"
#include "shell/titlelistmodel.h"
#include "store/catalogue.h"
#include "store/jetlike.h"
#include "store/jettext.h"
#include "store/jettextcolumns.h"
#include "store/storetest.h"
#include "support/testsupport.h"

namespace {

QStringList Strings(Database& database, const QString& sql) {
    QStringList values;
    for (auto records = database.OpenRecordset(sql, dbOpenSnapshot); !records->IsEOF();
         records->MoveNext())
        values << records->Fields(0).Value().toString();
    return values;
}

QString Scalar(Database& database, const QString& sql) {
    return Strings(database, sql).value(0);
}

// The catalogue as versions before the order made it: the same tables, binary text.
void MakeBinaryOrderCatalogue(const QString& path) {
    QFile script(QStringLiteral(QT_TESTCASE_SOURCEDIR) + "/src/store/schema.sql");
    QVERIFY(script.open(QIODevice::ReadOnly));
    const QByteArray schema = script.readAll().replace(" COLLATE JETTEXT", "");
    QFile::remove(path);
    sqlite3* db = nullptr;
    QCOMPARE(sqlite3_open(QFile::encodeName(path).constData(), &db), SQLITE_OK);
    QCOMPARE(sqlite3_exec(db, schema.constData(), nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(db);
    DBEngine::SetDatabasePassword(path, kDatabasePassword);
}

const QString kConnect = ";pwd=" + kDatabasePassword;

}  // namespace

class JetTextTest : public QObject {
    Q_OBJECT

  private slots:
    // The fast path on SQLite's UTF-8 must give the order of the prepared keys, or an index
    // and the list would disagree.
    void utf8PathAgreesWithTheKeys() {
        const QStringList pieces{"a", "A", "e", "E", "é",          "É",      "\u0301", "z",
                                 " ", "ß", "Ω", "ω", "\U0001D538", "\uFB01", "1"};
        QRandomGenerator random(13);
        auto text = [&] {
            QString result;
            const int length = random.bounded(5);
            for (int i = 0; i < length; ++i) result += pieces[random.bounded(pieces.size())];
            return result;
        };
        for (int round = 0; round < 20000; ++round) {
            const QString a = text();
            const QString b = text();
            const int expected = jettext::Compare(a, b);
            const QByteArray ua = a.toUtf8();
            const QByteArray ub = b.toUtf8();
            const int byUtf8 = jettext::CompareUtf8({ua.constData(), size_t(ua.size())},
                                                    {ub.constData(), size_t(ub.size())});
            QVERIFY2(expected == byUtf8, qPrintable(a + " | " + b));
            QCOMPARE(jettext::Compare(b, a), -expected);
        }
    }

    void catalogueComparesAndSortsAsJet() {
        TempProgramFolder folder;
        folder.openCatalogue();
        Database& db = *gDatabase;
        db.Execute("insert into platform (nmplatform, visible) values ('atari Jaguar', 1)");
        db.Execute("insert into vendor (nmvendor, idplatform) values ('Pink Floyd', 1)");
        db.Execute("insert into vendor (nmvendor, idplatform) values ('Émile', 1)");
        AddTitle(db, "été", 1, 1, 1, 1);
        AddTitle(db, "Ete", 1, 1, 1, 1);
        AddTitle(db, "etf", 1, 1, 1, 1);

        QCOMPARE(Scalar(db, "select nmvendor from vendor where nmvendor = 'pink floyd'"),
                 QString("Pink Floyd"));
        QCOMPARE(Scalar(db, "select nmvendor from vendor where nmvendor = 'ÉMILE'"),
                 QString("Émile"));
        QCOMPARE(Scalar(db, "select count(*) from vendor where nmvendor = 'Emile'"), QString("0"));
        QCOMPARE(Strings(db, "select nmplatform from platform order by nmplatform").mid(0, 2),
                 QStringList({"atari Jaguar", "Audio"}));
        // Through the platform's index, and by min and max.
        QCOMPARE(Strings(db, "select nmcd from title where idplatform = 1 order by nmcd"),
                 QStringList({"Ete", "été", "etf"}));
        QCOMPARE(Scalar(db, "select nmcd from title where idplatform = 1 and nmcd = 'ÉTÉ'"),
                 QString("été"));
        QCOMPARE(Scalar(db, "select min(nmplatform) from platform"), QString("atari Jaguar"));
        QCOMPARE(Scalar(db, "select max(nmcd) from title"), QString("etf"));
        // Jet's like ignores case beyond ASCII too.
        QCOMPARE(Scalar(db, "select nmcd from title where nmcd like '*ÉTÉ*'"), QString("été"));
        QCOMPARE(Scalar(db, "select count(*) from vendor where nmvendor like 'émil?'"),
                 QString("1"));
        // A column added later compares the same way.
        db.Execute("ALTER TABLE title ADD COLUMN extra TEXT(10)");
        db.Execute("update title set extra = 'Ärger' where nmcd = 'etf'");
        QCOMPARE(Scalar(db, "select nmcd from title where extra = 'ärger'"), QString("etf"));
        QVERIFY(!TextColumnsNeedJetOrder(db));
        folder.closeCatalogue();
    }

    void listSortsAsTheCatalogue() {
        TitleListModel model;
        std::vector<TitleRow> rows;
        for (const char* text : {"Video", "été", "etf", "atari Jaguar", "Ete"})
            rows.push_back(TitleRow{"id", text, {}, "", 1});
        model.SetRows(std::move(rows));
        model.SetSorting(true, 0, Qt::AscendingOrder);
        QStringList shown;
        for (int row = 0; row < model.rowCount(); ++row) shown << model.Text(row, 0);
        QCOMPARE(shown, QStringList({"atari Jaguar", "Ete", "été", "etf", "Video"}));
        // A new row goes behind the rows it equals.
        QCOMPARE(model.Add(TitleRow{"id", "ETF", {}, "", 1}), 4);
    }

    // An older catalogue is rebuilt once, keeping rows, ids, counters, relations and indexes.
    void olderCatalogueIsConverted() {
        TempProgramFolder folder;
        folder.installTemplate();
        const QString path = folder.file("data.gdb");
        MakeBinaryOrderCatalogue(path);
        {
            auto db = DBEngine::OpenDatabase(path, true, false, kConnect);
            db->Execute("insert into platform (nmplatform, visible) values ('atari Jaguar', 1)");
            AddTitle(*db, "Blue", 1, 1, 1, 1);
            AddTitle(*db, "gone", 1, 1, 1, 1);
            db->Execute("update title set label = NULL where nmcd = 'Blue'");
            db->Execute("delete from title where nmcd = 'gone'");
            db->Execute("insert into Tracks (idcd, TrackID, TrackName) values (1, 1, 'Dawn')");
            QVERIFY(TextColumnsNeedJetOrder(*db));
            QCOMPARE(Strings(*db, "select nmplatform from platform order by nmplatform").last(),
                     QString("atari Jaguar"));
        }
        const QString columnsBefore = "select group_concat(name) from pragma_table_info('title')";
        const QString indexes =
            "select group_concat(name) from (select name from sqlite_master where type = 'index' "
            "order by name)";
        auto db = DBEngine::OpenDatabase(path, true, false, kConnect);
        const QString titleColumns = Scalar(*db, columnsBefore);
        const QString indexNames = Scalar(*db, indexes);
        const QString counter = Scalar(*db, "select seq from sqlite_sequence where name = 'title'");

        GiveTextColumnsJetOrder(*db);
        QVERIFY(!TextColumnsNeedJetOrder(*db));
        QCOMPARE(Scalar(*db, columnsBefore), titleColumns);
        QCOMPARE(Scalar(*db, indexes), indexNames);
        QCOMPARE(Scalar(*db, "select seq from sqlite_sequence where name = 'title'"), counter);
        QCOMPARE(Strings(*db, "select nmplatform from platform order by nmplatform").first(),
                 QString("atari Jaguar"));
        QCOMPARE(Scalar(*db, "select idcd from title where nmcd = 'BLUE' and label is null"),
                 QString("1"));
        QCOMPARE(Scalar(*db, "select TrackName from Tracks where TrackName = 'dawn'"),
                 QString("Dawn"));
        // The relations still cascade.
        db->Execute("delete from title where idcd = 1");
        QCOMPARE(Scalar(*db, "select count(*) from Tracks"), QString("0"));
        db->Close();
        // A longer text is still refused after the rebuild.
        db = DBEngine::OpenDatabase(path, true, false, kConnect);
        QVERIFY(ErrorNumber([&] { AddTitle(*db, QString(151, 'x')); }) != 0);
        db->Close();
    }

    // The program converts an older catalogue at start, before the tree is filled.
    void startConvertsBeforeTheTree() {
        TempProgramFolder folder;
        folder.installTemplate();
        MakeBinaryOrderCatalogue(folder.file("data.gdb"));
        {
            auto db = DBEngine::OpenDatabase(folder.file("data.gdb"), true, false, kConnect);
            db->Execute("insert into platform (nmplatform, visible) values ('atari Jaguar', 1)");
        }
        ScriptedDialogs dialogs;
        QVERIFY(StartProgram());
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(gMainForm->Node(2)->text(0), QString("atari Jaguar"));
        QVERIFY(!TextColumnsNeedJetOrder(*gDatabase));
        EndProgram();
    }

    void patterns_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        const struct {
            const char *name, *pattern, *text;
            bool matches;
        } rows[] = {
            {"run inside", "*beat*", "The Beatles", true},
            {"run needs the rest", "*beat*s", "The Beatles!", false},
            {"whole text", "beat", "Beatles", false},
            {"empty run", "a*b", "ab", true},
            {"backtracking", "*ab*abc", "aabxabab abc", true},
            {"one character", "b?d", "bAd", true},
            {"digit", "track ##", "Track 07", true},
            {"digit refuses letter", "track ##", "Track 0x", false},
            {"set", "[abc]*", "Cello", true},
            {"range", "[m-p]ozart", "Mozart", true},
            {"range misses", "[a-l]ozart", "Mozart", false},
            {"negated set", "[!a-l]*", "Mozart", true},
            {"literal star in set", "a[*]b", "a*b", true},
            {"unclosed bracket is literal", "a[b", "a[B", true},
            {"unicode case", "*ÉBÈ*", "l'ébène", true},
            {"unicode one character", "?nd", "Ånd", true},
            {"unicode range", "[à-å]x", "Äx", true},
            {"empty pattern", "", "", true},
            {"only runs", "***", "", true},
        };
        for (const auto& row : rows)
            QTest::newRow(row.name) << QString(row.pattern) << QString(row.text) << row.matches;
    }
    void patterns() {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, matches);
        const jetlike::Pattern compiled(pattern);
        QCOMPARE(compiled.Matches(text), matches);
        const QByteArray utf8 = text.toUtf8();
        QCOMPARE(compiled.MatchesUtf8(utf8.constData(), static_cast<int>(utf8.size())), matches);
    }
};

VELMORA_TEST_MAIN(JetTextTest)
#include "jettext_test.moc"
