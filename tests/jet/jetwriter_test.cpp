// The Jet writer against readers that are not its own: mdbtools and an index walk; also after
// a writer cut off by a full disk or killed at any page write.

#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtTest>
#include <set>

#include "jet/jet.h"
#include "jetcheck.h"
#include "store/dao.h"
#include "store/storetest.h"

namespace {

QString Quoted(const QString& text) {
    return '"' + QString(text).replace('"', "\"\"") + '"';
}

QString TitleLine(qint64 id, const QString& artist, const QString& title, int tracks) {
    return QStringLiteral("%1,%2,%3,%4").arg(id).arg(Quoted(artist), Quoted(title)).arg(tracks);
}

QString TrackLine(qint64 id, int track, const QString& name) {
    return QStringLiteral("%1,%2,%3").arg(id).arg(track).arg(Quoted(name));
}

// How far the row count the table's header keeps for each index is from the header's count of
// the table's rows. The writer keeps them equal; Access's own files are not always exact.
std::vector<long> IndexCountDrift(const QString& path, const QString& table) {
    jet::Writer writer(path);
    const jet::TableDefinition& definition = writer.Table(table);
    const QByteArray& header = writer.Pages().Page(definition.page);
    const long rows = long(jet::ReadU32(header, jet::kTableRowCountOffset));
    std::vector<long> drift;
    for (size_t i = 0; i < definition.indexes.size(); ++i)
        drift.push_back(long(jet::ReadU32(header, jet::kIndexRowCountOffset +
                                                      int(i) * jet::kIndexRowCountStride)) -
                        rows);
    return drift;
}

// Every index of the table lists every row, in order, as the row's values say, and the header
// counts its rows as before the writer ran (driftBefore; none: equal to the table's).
void VerifyIndexes(const QString& path, const QString& table, std::vector<long> driftBefore = {}) {
    std::vector<jet::Index> indexes;
    {
        jet::Writer writer(path);
        indexes = writer.Table(table).indexes;
    }
    const long rows = CountedRows(path, table);
    for (const jet::Index& index : indexes) {
        long entries = 0;
        const QString fault = CheckIndex(path, table, index, entries);
        QVERIFY2(fault.isEmpty(), qPrintable(table + "." + index.name + ": " + fault));
        QCOMPARE(entries, rows);
    }
    if (driftBefore.empty()) driftBefore.resize(indexes.size());
    QCOMPARE(IndexCountDrift(path, table), driftBefore);
}

// mdb-export lists exactly the expected rows, and mdb-count counts them.
void VerifyRows(const QString& path, const QString& table, QStringList expected) {
    expected.sort();
    QCOMPARE(ExportedRows(path, table), expected);
    QCOMPARE(CountedRows(path, table), long(expected.size()));
}

}  // namespace

class JetWriterTest : public QObject {
    Q_OBJECT

  private slots:
    // Thousands of titles and tracks into the Deluxe layouts: new data pages, index page splits
    // with a new root, text in both stored forms, the extremes of a Long key.
    void appendsToDeluxeFilesAgreeWithMdbtools() {
        for (const QString fixture : {"cd_pk.mdb", "cd_noidx.mdb", "cd_empty.mdb"}) {
            QTemporaryDir folder;
            const QString path = CopyFixture(folder, fixture);
            const QByteArray before = ReadBytes(path);
            QStringList titles = ExportedRows(path, "Titles");
            QStringList tracks = ExportedRows(path, "Tracks");
            std::set<qint64> used = {1001, 1002, -5, 2147483647};
            QRandomGenerator random(42);
            {
                jet::Writer writer(path);
                for (int i = 0; i < 1500; ++i) {
                    qint64 id = i == 0 ? qint64(INT32_MIN) : qint64(int32_t(random.generate()));
                    while (used.count(id)) ++id;
                    used.insert(id);
                    const QString artist = i % 3 ? QStringLiteral("Artist %1").arg(i)
                                                 : QStringLiteral("Sigur Rós – Ágætis %1").arg(i);
                    const QString title = i % 7 ? QStringLiteral("Album \"%1\"").arg(i) : QString();
                    writer.AppendRow("Titles",
                                     writer.ValuesByName(
                                         "Titles", {{"TitleID", id},
                                                    {"Artist", artist},
                                                    {"Title", i % 7 ? QVariant(title) : QVariant()},
                                                    {"NumTracks", 3}}));
                    titles << (i % 7 ? TitleLine(id, artist, title, 3)
                                     : QStringLiteral("%1,%2,,3").arg(id).arg(Quoted(artist)));
                    for (int track = 0; track < 3; ++track) {
                        const QString name = QStringLiteral("Track %1 of %2 ’").arg(track).arg(i);
                        writer.AppendRow("Tracks", {id, track, name});
                        tracks << TrackLine(id, track, name);
                    }
                }
            }
            VerifyRows(path, "Titles", titles);
            VerifyRows(path, "Tracks", tracks);
            VerifyIndexes(path, "Titles");
            QCOMPARE(StrayChanges(before, path, {"Titles", "Tracks"}), QString());
        }
    }

    // Access's own files: a descending index grown across pages by Access, tables with several
    // indexes (unique and not), a page holding deleted rows, rows moved by overflow pointers.
    void appendsToAccessFilesKeepTheirIndexes() {
        QTemporaryDir folder;
        const QString compound = CopyFixture(folder, "compIndexTestV2000.mdb");
        const QByteArray compoundBefore = ReadBytes(compound);
        const std::vector<long> compoundDrift = IndexCountDrift(compound, "Table1");
        VerifyIndexes(compound, "Table1", compoundDrift);
        QStringList agents = ExportedRows(compound, "Table1");
        {
            jet::Writer writer(compound);
            QRandomGenerator random(7);
            for (int i = 0; i < 1500; ++i) {
                const qint64 id = 100000 + qint64(random.bounded(400000)) * 5000 + i;
                writer.AppendRow("Table1", {id, QStringLiteral("rs %1").arg(i), "dc"});
                agents << QStringLiteral("%1,\"rs %2\",\"dc\"").arg(id).arg(i);
            }
        }
        VerifyRows(compound, "Table1", agents);
        VerifyIndexes(compound, "Table1", compoundDrift);
        QCOMPARE(StrayChanges(compoundBefore, compound, {"Table1"}), QString());

        const QString indexed = CopyFixture(folder, "indexTestV2000.mdb");
        QStringList rows = ExportedRows(indexed, "Table1");
        const std::vector<long> indexedDrift = IndexCountDrift(indexed, "Table1");
        {
            jet::Writer writer(indexed);
            for (int i = 0; i < 600; ++i) {
                writer.AppendRow("Table1", {100 + i, i % 5, 10 + i % 3,
                                            QStringLiteral("baz%1").arg(i), QVariant()});
                rows << QStringLiteral("%1,%2,%3,\"baz%4\",")
                            .arg(100 + i)
                            .arg(i % 5)
                            .arg(10 + i % 3)
                            .arg(i);
                writer.AppendRow("Table2", {100 + i, "foo"});
                writer.AppendRow("Table3", {100 + i, QVariant()});
            }
        }
        VerifyRows(indexed, "Table1", rows);
        for (const QString table : {"Table1", "Table2", "Table3"}) {
            QCOMPARE(CountedRows(indexed, table), long(ExportedRows(indexed, table).size()));
            VerifyIndexes(indexed, table, table == "Table1" ? indexedDrift : std::vector<long>());
        }
    }

    // Rows changed where they are: shorter and longer on their page, moved to another page
    // behind an overflow pointer when the page is full, moved again from there.
    void changesRowsInPlace() {
        QTemporaryDir folder;
        const QString path = CopyFixture(folder, "cd_pk.mdb");
        const QString overflow = CopyFixture(folder, "overflowTestV2000.mdb");
        QStringList titles = ExportedRows(path, "Titles");
        {
            jet::Writer writer(path);
            std::vector<jet::RowLocation> rows;
            for (int i = 0; i < 60; ++i)
                rows.push_back(
                    writer.AppendRow("Titles", {5000 + i, "A", QStringLiteral("T%1").arg(i), 1}));
            const QString longText(200, QChar(0x263a));
            for (int round = 0; round < 3; ++round) {
                for (int i = 0; i < 60; ++i) {
                    const QString title = round == 1 ? QStringLiteral("short %1").arg(i)
                                                     : longText + QString::number(i);
                    writer.ChangeRow("Titles", rows[size_t(i)],
                                     {5000 + i, "Changed", title, round});
                    QCOMPARE(writer.ReadRow("Titles", rows[size_t(i)])[2].toString(), title);
                }
            }
            for (int i = 0; i < 60; ++i)
                titles << TitleLine(5000 + i, "Changed", longText + QString::number(i), 2);
            QCOMPARE(ErrorNumber([&] {
                         writer.ChangeRow("Titles", rows[0], {6000, "A", "B", 1});
                     }),
                     int(jet::kErrorUnsupported));
            jet::Writer moved(overflow);
            // The fixture's third row lives on another page behind a pointer.
            moved.ChangeRow("Table1", {27, 2}, {"now here", "and longer than it was"});
        }
        VerifyRows(path, "Titles", titles);
        VerifyIndexes(path, "Titles");
        const QStringList moved = ExportedRows(overflow, "Table1");
        QCOMPARE(moved.size(), 7);
        QVERIFY(moved.contains("\"now here\",\"and longer than it was\",,,,,,,"));
        QVERIFY(!moved.join('\n').contains("row3col"));
    }

    // What the writer refuses leaves the file byte for byte as it was, with a message that says
    // why.
    void refusalsLeaveTheFileUntouched() {
        QTemporaryDir folder;
        const QString path = CopyFixture(folder, "cd_pk.mdb");
        const QByteArray before = ReadBytes(path);
        {
            jet::Writer writer(path);
            QVERIFY(Refusal([&] {
                        writer.AppendRow("Titles", {1001, "Again", "Dup", 1});
                    }).startsWith("3022"));
            QVERIFY(Refusal([&] {
                        writer.AppendRow("Titles", {7, QString(256, 'x'), "", 1});
                    }).startsWith("3163"));
            QVERIFY(Refusal([&] {
                        writer.AppendRow("Titles", {qint64(1) << 40, "", "", 1});
                    }).startsWith("3421"));
            QVERIFY(Refusal([&] { writer.AppendRow("Nothing", {}); }).startsWith("3078"));
            QVERIFY(Refusal([&] { writer.AppendRow("MSysObjects", {}); }).contains("long values"));
            QVERIFY(Refusal([&] { jet::Writer second(path); }).startsWith("3045"));
            // A unit given up leaves nothing of its rows.
            writer.BeginUnit();
            writer.AppendRow("Titles", {8801, "Unit", "Dropped", 1});
            writer.AppendRow("Tracks", {8801, 0, "Dropped"});
            writer.EndUnit(false);
        }
        QCOMPARE(ReadBytes(path), before);
        {
            // Inside a unit a refused row drops itself alone.
            jet::Writer writer(path);
            writer.BeginUnit();
            writer.AppendRow("Titles", {8802, "Unit", "Kept", 1});
            QVERIFY(Refusal([&] {
                        writer.AppendRow("Titles", {1001, "Again", "Dup", 1});
                    }).startsWith("3022"));
            writer.AppendRow("Tracks", {8802, 0, "Kept"});
            writer.EndUnit(true);
        }
        QVERIFY(ExportedRows(path, "Titles").contains(TitleLine(8802, "Unit", "Kept", 1)));
        QVERIFY(ExportedRows(path, "Tracks").contains(TrackLine(8802, 0, "Kept")));
        VerifyIndexes(path, "Titles");

        const QString textIndex = CopyFixture(folder, "bigIndexTestV2000.mdb");
        const QByteArray textBefore = ReadBytes(textIndex);
        QVERIFY(Refusal([&] {
                    jet::Writer(textIndex).AppendRow("Table1", {"kiwi", "b"});
                }).contains("the character 'k' sorts"));
        QCOMPARE(ReadBytes(textIndex), textBefore);

        const QString jet3 = CopyFixture(folder, "indexTestV1997.mdb");
        QVERIFY(Refusal([&] { jet::Writer{jet3}; }).contains("Jet 3 (Access 97)"));
        const QString truncated = folder.filePath("truncated.mdb");
        WriteBytes(truncated, before.left(5000));
        QVERIFY(Refusal([&] { jet::Writer{truncated}; }).contains("truncated"));
        const QString text = folder.filePath("text.mdb");
        WriteBytes(text, QByteArray(8192, 'x'));
        QVERIFY(Refusal([&] { jet::Writer{text}; }).contains("not a Jet database"));
        QVERIFY(Refusal([&] { jet::Writer{folder.filePath("missing.mdb")}; }).startsWith("3024"));
    }

    // Text keys as Access writes them: every name in the catalogue's name index of an
    // Access-made file comes out of the encoder byte for byte; then a text index grown by
    // thousands of rows of varying length.
    void textKeysFollowAccessSortOrder() {
        QTemporaryDir folder;
        const QString access = CopyFixture(folder, "indexTestV2000.mdb");
        {
            jet::Writer writer(access);
            const jet::TableDefinition& catalog = writer.Table("MSysObjects");
            const auto byName =
                std::find_if(catalog.indexes.begin(), catalog.indexes.end(),
                             [](const jet::Index& index) { return index.columns.size() == 2; });
            QVERIFY(byName != catalog.indexes.end());
            const jet::IndexNode leaf = jet::ReadIndexNode(writer.Pages(), byName->rootPage);
            QVERIFY(leaf.IsLeaf());
            int compared = 0;
            for (const QByteArray& entry : leaf.entries) {
                const uint32_t pointer = jet::ReadU32BigEndian(entry, entry.size() - 4);
                const auto values =
                    writer.ReadRow("MSysObjects", {pointer >> 8, uint8_t(pointer & 0xff)});
                QByteArray key;
                if (ErrorNumber([&] { key = jet::EncodeIndexKey(catalog, *byName, values); }) != 0)
                    continue;
                QCOMPARE(key.toHex(), entry.left(entry.size() - 4).toHex());
                ++compared;
            }
            QVERIFY(compared >= 20);
        }

        const QString path = CopyFixture(folder, "bigIndexTestV2000.mdb");
        const QString alphabet = "abcdefghijlmnopqrstuvxyABCDEFGHIJLMNOPQRSTUVXY123";
        QRandomGenerator random(11);
        QStringList rows;
        {
            jet::Writer writer(path);
            for (int i = 0; i < 2000; ++i) {
                QString text;
                const int length = 1 + random.bounded(i % 10 ? 12 : 200);
                for (int c = 0; c < length; ++c) text += alphabet[random.bounded(alphabet.size())];
                writer.AppendRow("Table1", {i % 50 ? QVariant(text) : QVariant(), "x"});
                rows << (i % 50 ? Quoted(text) : QString()) + ",\"x\"";
            }
        }
        VerifyRows(path, "Table1", rows);
        VerifyIndexes(path, "Table1");
    }

    // A write cut off at any page, by a full disk or by the end of the writer, leaves the file
    // in the state of its last whole row: mdbtools reads it with every old row, and once the
    // program has opened it again its counts and indexes agree with its rows exactly.
    void cutOffWritesLeaveTheLastWholeFile() {
        QTemporaryDir folder;
        const QString path = CopyFixture(folder, "cd_pk.mdb");
        // Room left for the file to grow, or the page write at which the writer is killed.
        const std::vector<std::pair<qint64, int>> cuts = {
            {1000, 0}, {5000, 0}, {9000, 0}, {0, 1}, {0, 2}, {0, 4}, {0, 9}, {0, 31}, {0, 120}};
        QStringList kept = ExportedRows(path, "Titles");
        int round = 0;
        for (const auto& [room, killAt] : cuts) {
            ++round;
            const rlim_t limit = rlim_t(QFileInfo(path).size() + room);
            const pid_t child = fork();
            QVERIFY(child >= 0);
            if (child == 0) {
                if (room > 0) {
                    signal(SIGXFSZ, SIG_IGN);
                    const rlimit lowered{limit, limit};
                    setrlimit(RLIMIT_FSIZE, &lowered);
                }
                int writes = 0;
                jet::SetPageWriteHook([&] {
                    if (++writes == killAt) raise(SIGKILL);
                });
                try {
                    jet::Writer writer(path);
                    for (int i = 0; i < 3000; ++i) {
                        const int id = round * 100000 + i;
                        // Every other title with its tracks as one unit.
                        const bool unit = i % 2 == 0;
                        if (unit) writer.BeginUnit();
                        writer.AppendRow("Titles",
                                         {id, "Cut artist", QStringLiteral("Title %1").arg(i), 2});
                        writer.AppendRow("Tracks", {id, 0, "One"});
                        writer.AppendRow("Tracks", {id, 1, "Two"});
                        if (unit) writer.EndUnit(true);
                    }
                } catch (const jet::WriteError& error) {
                    _exit(error.Number == jet::kErrorDiskFull ? 0 : 1);
                }
                _exit(2);
            }
            int status = 0;
            waitpid(child, &status, 0);
            if (room > 0)
                QCOMPARE(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0);
            else
                QVERIFY(WIFSIGNALED(status));

            int exitCode = -1;
            const QStringList asLeft = ExportedRows(path, "Titles", &exitCode);
            QCOMPARE(exitCode, 0);
            for (const QString& row : kept) QVERIFY2(asLeft.contains(row), qPrintable(row));

            const auto reading = DBEngine::OpenDatabase(path, false, true);
            auto titles = reading->OpenRecordset("select * from Titles", dbOpenSnapshot);
            if (!titles->IsEOF()) titles->MoveLast();
            kept = ExportedRows(path, "Titles");
            QCOMPARE(titles->RecordCount(), long(kept.size()));
            QCOMPARE(CountedRows(path, "Titles"), long(kept.size()));
            const QStringList tracks = ExportedRows(path, "Tracks");
            QCOMPARE(CountedRows(path, "Tracks"), long(tracks.size()));
            // A title written as a unit is there with both its tracks or not at all.
            for (int i = 0; i < 3000; i += 2) {
                const int id = round * 100000 + i;
                const bool title = kept.contains(
                    TitleLine(id, "Cut artist", QStringLiteral("Title %1").arg(i), 2));
                const int trackRows = int(tracks.contains(TrackLine(id, 0, "One"))) +
                                      int(tracks.contains(TrackLine(id, 1, "Two")));
                QVERIFY2(trackRows == (title ? 2 : 0), qPrintable(QString::number(id)));
            }
            VerifyIndexes(path, "Titles");
            QVERIFY(!QFile::exists(path + "-journal"));
        }
        QVERIFY(kept.size() > 40);
    }
};

QTEST_GUILESS_MAIN(JetWriterTest)
#include "jetwriter_test.moc"
