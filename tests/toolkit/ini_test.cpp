#include <QFile>
#include <QTemporaryDir>

#include "support/testsupport.h"
#include "toolkit/mUtility.h"

class IniTest : public QObject {
    Q_OBJECT

    QTemporaryDir dir;

  private slots:
    void readsLikeTheWindowsProfileFunctions() {
        const QString path = dir.filePath("cdplayer.ini");
        WriteBytes(path,
                   "; written by hand\r\n[CDDB]\r\nversion=1\r\n\r\n[ 4A0B3C12 ]\r\n"
                   "EntryType=1\r\n  Artist =  The Band  \r\ntitle=\"  Quoted  \"\r\n"
                   "0='single'\r\n1=\"unbalanced\r\nbare\r\nnumtracks=\r\n"
                   "[4a0b3c12]\r\nartist=second section\r\n");
        QCOMPARE(ReadIniString(path, "4a0b3c12", "ARTIST", "x"), QString("The Band"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "title", "x"), QString("  Quoted  "));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "0", "x"), QString("single"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "1", "x"), QString("\"unbalanced"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "bare", "x"), QString());
        QCOMPARE(ReadIniString(path, "4A0B3C12", "numtracks", "no"), QString());
        QCOMPARE(ReadIniString(path, "4A0B3C12", "order", "no"), QString("no"));
        QCOMPARE(ReadIniString(path, "4A0B3C12", "version", "no"), QString("no"));
        QCOMPARE(ReadIniString(path, "FFFFFFFF", "title", "Track 1  "), QString("Track 1"));
        QCOMPARE(ReadIniString(dir.filePath("absent.ini"), "CDDB", "version", "d"), QString("d"));

        // LF line ends and 8-bit text from Windows read as well.
        WriteBytes(path, "[Disc]\ntitle=Caf\xe9\n");
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString("Caf\u00e9"));
    }

    void valuesAreCutAt255Characters() {
        const QString path = dir.filePath("long.ini");
        const QString value = QString(250, 'a') + QString(50, 'b');
        WriteBytes(path, "[S]\nkey=" + value.toLatin1() + "\n");
        QCOMPARE(ReadIniString(path, "S", "key", ""), value.left(255));
        QCOMPARE(ReadIniString(path, "S", "missing", value), value.left(255));
    }

    void writingKeepsTheRestOfTheFile() {
        const QString path = dir.filePath("write.ini");
        WriteBytes(path,
                   "; keep me\r\n[1A]\r\nTitle=Old\r\nnumtracks=1\r\n\r\n[2B]\r\ntitle=Other\r\n");
        QString value = "New";
        QVERIFY(WriteIniString(path, "1a", "TITLE", value));
        value = "0 1";
        QVERIFY(WriteIniString(path, "1A", "order", value));
        value = "Fresh";
        QVERIFY(WriteIniString(path, "3C", "title", value));
        QCOMPARE(ReadBytes(path),
                 QByteArray("; keep me\r\n[1A]\r\nTitle=New\r\nnumtracks=1\r\norder=0 1\r\n\r\n"
                            "[2B]\r\ntitle=Other\r\n\r\n[3C]\r\ntitle=Fresh\r\n"));
        QCOMPARE(ReadIniString(path, "1A", "title", ""), QString("New"));
        QCOMPARE(ReadIniString(path, "2B", "title", ""), QString("Other"));

        const QString lfFile = dir.filePath("lfFile.ini");
        WriteBytes(lfFile, "[A]\nkey=1\n");
        value = "Caf\u00e9";
        QVERIFY(WriteIniString(lfFile, "A", "name", value));
        QCOMPARE(ReadBytes(lfFile), QByteArray("[A]\nkey=1\nname=Caf\xe9\n"));

        const QString windows = dir.filePath("ansi.ini");
        WriteBytes(windows, "[A]\r\nname=Caf\xe9\r\n");
        value = "\u00c9t\u00e9";
        QVERIFY(WriteIniString(windows, "A", "other", value));
        QCOMPARE(ReadBytes(windows), QByteArray("[A]\r\nname=Caf\xe9\r\nother=\xc9t\xe9\r\n"));

        const QString created = dir.filePath("new.ini");
        value = "1";
        QVERIFY(WriteIniString(created, "CDDB", "version", value));
        QCOMPARE(ReadBytes(created), QByteArray("[CDDB]\r\nversion=1\r\n"));

        value = "lost";
        QVERIFY(!WriteIniString(dir.filePath("no/such/folder.ini"), "A", "key", value));
    }

    void lineBreaksBecomeBlanksInTheCallersValueOnly() {
        const QString path = dir.filePath("breaks.ini");
        QString value = "Side A\r\nSide B\n";
        QVERIFY(WriteIniString(path, "Disc", "title", value));
        QCOMPARE(value, QString("Side A  Side B "));
        QCOMPARE(ReadBytes(path), QByteArray("[Disc]\r\ntitle=Side A\r\nSide B\n\r\n"));
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString("Side A"));
    }

    void encodingsAreReadAndKept() {
        // Windows-1252 has its own characters at 0x80 to 0x9F.
        const QString ansi = dir.filePath("cp1252.ini");
        WriteBytes(ansi,
                   "[Disc]\r\ntitle=L\x92uomo \x80 stra\xdf"
                   "e\r\n");
        QCOMPARE(ReadIniString(ansi, "Disc", "title", ""),
                 QString("L\u2019uomo \u20ac stra\u00dfe"));
        QString value = "Caf\u00e9 \u2019 \u4e2d";
        QVERIFY(WriteIniString(ansi, "Disc", "artist", value));
        QCOMPARE(ReadBytes(ansi), QByteArray("[Disc]\r\ntitle=L\x92uomo \x80 stra\xdf"
                                             "e\r\nartist=Caf\xe9 \x92 ?\r\n"));

        // UTF-8 stays UTF-8, with its byte-order mark when it had one.
        const QString utf8 = dir.filePath("utf8.ini");
        WriteBytes(utf8, "\xef\xbb\xbf[Disc]\ntitle=Bj\xc3\xb6rk\n");
        QCOMPARE(ReadIniString(utf8, "disc", "TITLE", ""), QString("Bj\u00f6rk"));
        value = "\u4e2d";
        QVERIFY(WriteIniString(utf8, "Disc", "artist", value));
        QCOMPARE(ReadBytes(utf8),
                 QByteArray("\xef\xbb\xbf[Disc]\ntitle=Bj\xc3\xb6rk\nartist=\xe4\xb8\xad\n"));
    }

    void aWriteRunWritesEachFileOnceAtItsEnd() {
        const QString path = dir.filePath("run.ini");
        WriteBytes(path, "[Old]\r\nkey=1\r\n");
        {
            IniWriteRun run;
            for (int section = 0; section < 200; ++section)
                for (int key = 0; key < 10; ++key) {
                    QString value = QString("value %1").arg(key);
                    QVERIFY(WriteIniString(path, QString::number(section, 16), QString::number(key),
                                           value));
                }
            // Reads in the run see the writes; the file does not yet.
            QCOMPARE(ReadIniString(path, "c7", "9", ""), QString("value 9"));
            QCOMPARE(ReadBytes(path), QByteArray("[Old]\r\nkey=1\r\n"));
            QString broken = "first\r\nsecond=line";
            QVERIFY(WriteIniString(path, "Old", "key", broken));
            QCOMPARE(ReadIniString(path, "Old", "second", ""), QString("line"));
            QVERIFY(run.Commit());
        }
        const QByteArray written = ReadBytes(path);
        QVERIFY(
            written.startsWith("[Old]\r\nkey=first\r\nsecond=line\r\n\r\n[0]\r\n0=value 0\r\n"));
        QCOMPARE(written.count("\r\n9=value 9\r\n"), 200);
        QCOMPARE(ReadIniString(path, "C7", "9", ""), QString("value 9"));

        // A folder that is not there fails at the write; the run writes nothing there.
        IniWriteRun run;
        QString value = "x";
        QVERIFY(!WriteIniString(dir.filePath("missing/run.ini"), "A", "b", value));
        QVERIFY(run.Commit());
    }

    void readsSeeChangesMadeBehindTheirBack() {
        const QString path = dir.filePath("changing.ini");
        WriteBytes(path, "[A]\nkey=first\n");
        QCOMPARE(ReadIniString(path, "A", "key", ""), QString("first"));
        WriteBytes(path, "[A]\nkey=the second\n");
        QCOMPARE(ReadIniString(path, "A", "key", ""), QString("the second"));
        QFile::remove(path);
        QCOMPARE(ReadIniString(path, "A", "key", "gone"), QString("gone"));
    }
};

VELMORA_TEST_MAIN(IniTest)
#include "ini_test.moc"
