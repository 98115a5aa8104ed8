// A writer killed at any moment leaves a file that mdbtools reads in full and whose index is in
// order and points at real rows.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

#include "jetcheck.h"

class JetWriterKillTest : public QObject {
    Q_OBJECT

  private slots:
    void killedWriterLeavesAReadableFile() {
        QTemporaryDir folder;
        const QString path = CopyFixture(folder, "cd_pk.mdb");
        QRandomGenerator random(2026);
        const int rounds = 10;
        for (int round = 1; round <= rounds; ++round) {
            // The child tells of every title it wrote, so that each kill falls after a random
            // number of titles and at a random moment inside the next one, however fast the
            // machine (or the sanitizers) make the writer.
            int progress[2];
            QVERIFY(pipe(progress) == 0);
            const pid_t child = fork();
            QVERIFY(child >= 0);
            if (child == 0) {
                ::close(progress[0]);
                try {
                    jet::Writer writer(path);
                    for (int i = 0;; ++i) {
                        const int id = round * 1000000 + i;
                        writer.AppendRow(
                            "Titles", {id, "Killed artist", QStringLiteral("Title %1").arg(i), 2});
                        writer.AppendRow("Tracks", {id, 0, "First"});
                        writer.AppendRow("Tracks", {id, 1, "Second"});
                        if (::write(progress[1], "t", 1) != 1) _exit(3);
                    }
                } catch (...) {
                    _exit(2);
                }
            }
            ::close(progress[1]);
            const int titlesBeforeKill = random.bounded(10, 40);
            char told = 0;
            for (int seen = 0; seen < titlesBeforeKill; ++seen)
                QVERIFY(::read(progress[0], &told, 1) == 1);
            usleep(useconds_t(random.bounded(0, 3000)));
            kill(child, SIGKILL);
            int status = 0;
            waitpid(child, &status, 0);
            ::close(progress[0]);
            QVERIFY2(WIFSIGNALED(status), "the writer stopped before it was killed");
        }
        int exitCode = -1;
        const QStringList titles = ExportedRows(path, "Titles", &exitCode);
        QCOMPARE(exitCode, 0);
        const QStringList tracks = ExportedRows(path, "Tracks", &exitCode);
        QCOMPARE(exitCode, 0);
        QVERIFY(titles.size() > 100);
        const QRegularExpression written(R"(^\d+,"Killed artist","Title \d+",2$)");
        int ours = 0;
        for (const QString& line : titles) ours += written.match(line).hasMatch();
        QCOMPARE(ours, titles.size() - 4);
        const QRegularExpression track(R"(^\d+,(0,"First"|1,"Second")$)");
        int ourTracks = 0;
        for (const QString& line : tracks) ourTracks += track.match(line).hasMatch();
        QCOMPARE(ourTracks, tracks.size() - 8);
        QVERIFY(tracks.size() - 8 >= 2 * ours - 2 * rounds);
        // A kill may fall between a row and its count or its index entry, once per round.
        const long counted = CountedRows(path, "Titles");
        QVERIFY(counted <= titles.size() && counted >= titles.size() - rounds);
        jet::Index index;
        {
            jet::Writer writer(path);
            index = writer.Table("Titles").indexes.at(0);
        }
        long entries = 0;
        const QString fault = CheckIndex(path, "Titles", index, entries);
        QVERIFY2(fault.isEmpty(), qPrintable(fault));
        QVERIFY(entries <= titles.size() && entries >= titles.size() - rounds);
    }
};

QTEST_GUILESS_MAIN(JetWriterKillTest)
#include "jetwriterkill_test.moc"
