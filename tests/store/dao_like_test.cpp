// Jet's like patterns, on their own and inside the program's statements.

#include "store/catalogue.h"
#include "store/jetlike.h"
#include "store/storetest.h"
#include "support/testsupport.h"

class DaoLikeTest : public QObject {
    Q_OBJECT

  private slots:
    void patterns_data() {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        QTest::newRow("run inside") << "*beat*"
                                    << "The Beatles" << true;
        QTest::newRow("run needs the rest") << "*beat*s"
                                            << "The Beatles!" << false;
        QTest::newRow("whole text") << "beat"
                                    << "Beatles" << false;
        QTest::newRow("empty run") << "a*b"
                                   << "ab" << true;
        QTest::newRow("backtracking") << "*ab*abc"
                                      << "aabxabab abc" << true;
        QTest::newRow("one character") << "b?d"
                                       << "bAd" << true;
        QTest::newRow("one, not none") << "b?d"
                                       << "bd" << false;
        QTest::newRow("digit") << "track ##"
                               << "Track 07" << true;
        QTest::newRow("digit refuses letter") << "track ##"
                                              << "Track 0x" << false;
        QTest::newRow("set") << "[abc]*"
                             << "Cello" << true;
        QTest::newRow("range") << "[m-p]ozart"
                               << "Mozart" << true;
        QTest::newRow("range misses") << "[a-l]ozart"
                                      << "Mozart" << false;
        QTest::newRow("negated set") << "[!a-l]*"
                                     << "Mozart" << true;
        QTest::newRow("negated set refuses") << "[!m]*"
                                             << "mozart" << false;
        QTest::newRow("literal star in set") << "a[*]b"
                                             << "a*b" << true;
        QTest::newRow("literal star refuses") << "a[*]b"
                                              << "axb" << false;
        QTest::newRow("unclosed bracket is literal") << "a[b"
                                                     << "a[B" << true;
        QTest::newRow("unicode case") << "*ÉBÈ*"
                                      << "l'ébène" << true;
        QTest::newRow("unicode one character") << "?nd"
                                               << "Ånd" << true;
        QTest::newRow("unicode range") << "[à-å]x"
                                       << "Äx" << true;
        QTest::newRow("empty pattern") << ""
                                       << "" << true;
        QTest::newRow("empty pattern, text") << ""
                                             << "a" << false;
        QTest::newRow("only runs") << "***"
                                   << "" << true;
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

    void statementsUseJetPatterns() {
        TempProgramFolder folder;
        folder.openCatalogue();
        AddTitle(*gDatabase, "Abbey Road");
        AddTitle(*gDatabase, "Revolver");
        gDatabase->Execute(
            "INSERT INTO Tracks (idcd, TrackID, TrackName) VALUES (1, 1, "
            "'Come Together'), (2, 1, 'Taxman'), (2, 2, NULL)");
        const auto names = [](const QString& sql) {
            QStringList found;
            for (auto rs = gDatabase->OpenRecordset(sql); !rs->IsEOF(); rs->MoveNext())
                found << rs->Fields("nmcd").Value().toString();
            return found;
        };
        QCOMPARE(names("select * from title where nmcd like '*ROAD' order by nmcd"),
                 QStringList({"Abbey Road"}));
        QCOMPARE(names("select * from title where nmcd like '?e*' order by nmcd"),
                 QStringList({"Revolver"}));
        QCOMPARE(names("select * from title where nmcd not like '[a-m]*' order by nmcd"),
                 QStringList({"Revolver"}));
        // The search's form: titles having a track of that name; a Null track matches nothing.
        QCOMPARE(names("select * from title where title.idplatform = 1 and title.idcd in "
                       "(select idcd from tracks where TrackName like '*tax*')"),
                 QStringList({"Revolver"}));
        // SQLite's own wildcards are plain characters to Jet.
        QCOMPARE(names("select * from title where nmcd like 'Abbey%'"), QStringList());
        auto nulls = gDatabase->OpenRecordset(
            "select TrackName like '*' as m from Tracks "
            "where TrackName is null");
        QVERIFY(nulls->Fields("m").IsNull());
    }
};

VELMORA_TEST_MAIN(DaoLikeTest)
#include "dao_like_test.moc"
