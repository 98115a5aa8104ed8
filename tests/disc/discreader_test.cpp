// The disc readers: the identity rule, data listings from folders and ISO images, and the
// refusals of broken input (an audio CD read from its cue sheet is the title editor's test).

#include <QtTest>
#include <fstream>

#include "disc/audiodisc.h"
#include "disc/datadisc.h"
#include "disc/discidentity.h"
#include "disc/discimages.h"
#include "disc/discnames.h"
#include "support/testsupport.h"

using namespace discimages;

namespace {

qint32 Sector(int minutes, int seconds, int frames) {
    return (minutes * 60 + seconds) * 75 + frames - 150;
}

}  // namespace

class DiscReaderTest : public QObject {
    Q_OBJECT

  private slots:
    void identityOfKnownTables() {
        // Three tracks at 00:02:00, 03:02:00 and 05:32:00 absolute.
        TableOfContents three{{Sector(0, 2, 0), Sector(3, 2, 0), Sector(5, 32, 0)},
                              Sector(7, 0, 0)};
        QCOMPARE(DiscTitleId(three), 0x82400u);
        QCOMPARE(DiscSectionName(DiscTitleId(three)), QString("82400"));

        // Frames and seconds are packed, not counted: 01:02:03 gives 0x010203.
        TableOfContents frames{{Sector(0, 2, 0), Sector(1, 2, 3), Sector(2, 59, 74)},
                               Sector(4, 0, 0)};
        QCOMPARE(DiscTitleId(frames), 0x000200u + 0x010203u + 0x023B4Au);

        // Fewer than three tracks add the disc's length in frames; the lead-out does not
        // count otherwise.
        TableOfContents two{{Sector(0, 2, 0), Sector(3, 2, 0)}, Sector(10, 2, 0)};
        QCOMPARE(DiscTitleId(two), 0x000200u + 0x030200u + 10u * 60 * 75);
        TableOfContents one{{Sector(0, 2, 0)}, Sector(0, 2, 0) + 1000};
        QCOMPARE(DiscTitleId(one), 0x200u + 1000u);
        three.leadout += 5000;
        QCOMPARE(DiscTitleId(three), 0x82400u);
    }

    void decodesTextOfEitherEncoding() {
        QCOMPARE(DecodeDiscText("Caf\xc3\xa9"), QString::fromUtf8("Café"));
        QCOMPARE(DecodeDiscText("Caf\xe9 \x80 \x93x\x94"), QString::fromUtf8("Café € “x”"));
    }

    void audioRefusals() {
        QTemporaryDir dir;
        AudioDisc disc;
        disc.album = "untouched";
        QString problem;

        // No such drive or file, a cue whose bin is missing, a text file, an empty drive
        // stand-in: each says why and leaves the disc alone.
        QVERIFY(!ReadAudioDisc(dir.path() + "/sr9", disc, problem));
        QVERIFY(problem.contains("does not exist"));
        const QString missingBin =
            MakeCue(dir.path(), "lost", "X", "Y", {{"00:00:00", "One"}}, 750, false);
        QVERIFY(!ReadAudioDisc(missingBin, disc, problem));
        QVERIFY2(problem.contains("lost.cue"), qPrintable(problem));
        WriteBytes(dir.path() + "/notes.txt", "hello");
        QVERIFY(!ReadAudioDisc(dir.path() + "/notes.txt", disc, problem));
        QVERIFY(!ReadAudioDisc("/dev/null", disc, problem));
        QCOMPARE(disc.album, QString("untouched"));

        // A data disc where an audio one is expected.
        if (!Xorriso().isEmpty()) {
            WriteFile(dir.path() + "/data/readme.txt", 10);
            const QString iso = MakeIso(dir.path() + "/data", dir.path() + "/data.iso");
            QVERIFY(!iso.isEmpty());
            QVERIFY(!ReadAudioDisc(iso, disc, problem));
            QVERIFY2(problem.contains("data disc"), qPrintable(problem));
        }
        QCOMPARE(disc.album, QString("untouched"));
    }

    void folderListing() {
        QTemporaryDir dir;
        const QString root = dir.path() + "/disc";
        WriteFile(root + "/setup.exe", 1234);
        WriteFile(root + "/docs/readme.txt", 10);
        WriteFile(root + "/docs/empty.txt", 0);
        QDir().mkpath(root + "/locked");
        WriteFile(root + "/locked/secret.txt", 5);
        QFile::setPermissions(root + "/locked", QFileDevice::WriteOwner);
        // A loop and a link to a file.
        QFile::link(root, root + "/docs/loop");
        QFile::link(root + "/setup.exe", root + "/setup-link.exe");
        // A name written in Windows-1252 by another system.
        std::ofstream(QFile::encodeName(root).toStdString() + "/caf\xe9.txt") << "abc";

        DataDisc disc;
        QString problem;
        QVERIFY2(ListDataFolder(root, disc, problem), qPrintable(problem));
        QFile::setPermissions(root + "/locked", QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                    QFileDevice::ExeOwner);
        const QStringList lines = disc.listing.split("\r\n");
        QStringList expected{QString::fromUtf8("café.txt (3 bytes)"), "docs/empty.txt (0 bytes)",
                             "docs/readme.txt (10 bytes)", "setup-link.exe (1234 bytes)",
                             "setup.exe (1234 bytes)"};
        if (::geteuid() == 0)  // root reads any folder
            expected.insert(3, "locked/secret.txt (5 bytes)");
        else
            QCOMPARE(disc.unreadableFolders, QStringList{"locked"});
        QCOMPARE(lines, expected);
        QCOMPARE(disc.files, qint64(expected.size()));
        QVERIFY(disc.capacity > 0);
        QVERIFY(disc.freespace >= 0 && disc.freespace <= disc.capacity);

        QVERIFY(!ListDataFolder(root + "/setup.exe", disc, problem));
        QVERIFY(problem.contains("not a folder"));
    }

    void isoListingAndDamage() {
        if (Xorriso().isEmpty()) QSKIP("xorriso is not installed");
        QTemporaryDir dir;
        const QString root = dir.path() + "/disc";
        WriteFile(root + "/Setup.EXE", 4096);
        WriteFile(root + "/Docs/Read Me.txt", 100);
        WriteFile(root + "/Docs/Deep/a.dat", 1);
        WriteFile(root + "/" + QString::fromUtf8("Ünïcode.txt"), 2);
        const QString iso = MakeIso(root, dir.path() + "/disc.iso");
        QVERIFY(!iso.isEmpty());

        DataDisc disc;
        QString problem;
        QVERIFY2(ListIsoImage(iso, disc, problem), qPrintable(problem));
        QCOMPARE(
            disc.listing.split("\r\n"),
            (QStringList{"Docs/Deep/a.dat (1 bytes)", "Docs/Read Me.txt (100 bytes)",
                         "Setup.EXE (4096 bytes)", QString::fromUtf8("Ünïcode.txt (2 bytes)")}));
        QCOMPARE(disc.capacity, double(QFileInfo(iso).size()));
        QCOMPARE(disc.freespace, 0.0);

        // Cut short, or not an image at all: refused, the earlier reading kept.
        QFile::copy(iso, dir.path() + "/cut.iso");
        QFile cut(dir.path() + "/cut.iso");
        cut.open(QIODevice::ReadWrite);
        cut.resize(cut.size() / 2);
        cut.close();
        const QString kept = disc.listing;
        QVERIFY(!ListIsoImage(cut.fileName(), disc, problem));
        QVERIFY2(problem.contains("cut short"), qPrintable(problem));
        cut.open(QIODevice::ReadWrite);
        cut.resize(20000);
        cut.close();
        QVERIFY(!ListIsoImage(cut.fileName(), disc, problem));
        QVERIFY(!ListIsoImage(root + "/Setup.EXE", disc, problem));
        QVERIFY(problem.contains("not an ISO 9660"));
        QCOMPARE(disc.listing, kept);
    }
};

QTEST_GUILESS_MAIN(DiscReaderTest)
#include "discreader_test.moc"
