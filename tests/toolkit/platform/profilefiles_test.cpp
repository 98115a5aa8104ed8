// The Windows profile (.ini) files as this system reads and writes them.

#include "support/testsupport.h"
#include "toolkit/platform/mUtility.h"

class ProfileFilesTest : public QObject {
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

        // Windows hands over no more than the 255 places of the reader's buffer.
        WriteBytes(path, "[Disc]\r\ntitle=" + QByteArray(300, 'x') + "\r\n");
        QCOMPARE(ReadIniString(path, "Disc", "title", ""), QString(255, 'x'));
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

        // A UTF-8 file keeps its byte-order mark.
        const QString marked = dir.filePath("marked.ini");
        WriteBytes(marked, "\xEF\xBB\xBF[A]\r\nname=Caf\xc3\xa9\r\n");
        value = "\u00c9t\u00e9";
        QVERIFY(WriteIniString(marked, "A", "other", value));
        QCOMPARE(ReadBytes(marked),
                 QByteArray("\xEF\xBB\xBF[A]\r\nname=Caf\xc3\xa9\r\nother=\xc3\x89t\xc3\xa9\r\n"));

        const QString created = dir.filePath("new.ini");
        value = "1";
        QVERIFY(WriteIniString(created, "CDDB", "version", value));
        QCOMPARE(ReadBytes(created), QByteArray("[CDDB]\r\nversion=1\r\n"));

        value = "lost";
        QVERIFY(!WriteIniString(dir.filePath("no/such/folder.ini"), "A", "key", value));
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
    }
};

VELMORA_TEST_MAIN(ProfileFilesTest)
#include "profilefiles_test.moc"
