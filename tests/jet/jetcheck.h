#pragma once

// Checks of a Jet file by readers that are not the writer: mdbtools' command-line tools, and a
// walk of every index that the tests do themselves.

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <set>

#include "jet/jetindex.h"
#include "jet/jetwriter.h"
#include "support/testsupport.h"

// A fixture copied into a temporary folder, so that tests change their own copy.
inline QString CopyFixture(const QTemporaryDir& folder, const QString& name) {
    const QString target = folder.filePath(name);
    QFile::remove(target);
    QFile::copy(FixturePath("jet/" + name), target);
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    return target;
}

// The lines mdb-export gives for a table, header left out, sorted; empty on a failure.
inline QStringList ExportedRows(const QString& path, const QString& table,
                                int* exitCode = nullptr) {
    QProcess tool;
    tool.start(QStringLiteral("mdb-export"), {QStringLiteral("-H"), path, table});
    tool.waitForFinished(60000);
    if (exitCode) *exitCode = tool.exitCode();
    QStringList rows =
        QString::fromUtf8(tool.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    rows.sort();
    return rows;
}

inline long CountedRows(const QString& path, const QString& table) {
    QProcess tool;
    tool.start(QStringLiteral("mdb-count"), {path, table});
    tool.waitForFinished(60000);
    bool ok = false;
    const long count = QString::fromUtf8(tool.readAllStandardOutput()).trimmed().toLong(&ok);
    return ok ? count : -1;
}

// Walks one index from its root: every intermediate entry must carry its child's last entry,
// the leaves (followed along their next pointers) must list entries in strictly rising order,
// and each entry must point to a row whose values give the entry's key. Returns what is wrong,
// or an empty text and the number of entries in `entries`.
inline QString CheckIndex(const QString& path, const QString& tableName, const jet::Index& index,
                          long& entries) {
    jet::Writer reader(path);
    jet::PageFile& file = reader.Pages();
    const jet::TableDefinition& table = reader.Table(tableName);
    entries = 0;
    auto sortPart = [](const jet::IndexNode& node, const QByteArray& entry) {
        return node.IsLeaf() ? entry : entry.left(entry.size() - 4);
    };
    std::function<QString(uint32_t, QByteArray*)> checkNode = [&](uint32_t page,
                                                                  QByteArray* last) -> QString {
        const jet::IndexNode node = jet::ReadIndexNode(file, page);
        if (node.IsLeaf()) {
            if (!node.entries.empty()) *last = node.entries.back();
            return {};
        }
        for (const QByteArray& entry : node.entries) {
            QByteArray childLast;
            const QString fault =
                checkNode(jet::ReadU32BigEndian(entry, entry.size() - 4), &childLast);
            if (!fault.isEmpty()) return fault;
            if (childLast != sortPart(node, entry))
                return QStringLiteral("page %1: an entry does not carry its child's last entry")
                    .arg(page);
        }
        if (node.Tail() != 0) {
            QByteArray tailLast;
            return checkNode(node.Tail(), &tailLast);
        }
        if (!node.entries.empty()) *last = sortPart(node, node.entries.back());
        return {};
    };
    QByteArray rootLast;
    const QString fault = checkNode(index.rootPage, &rootLast);
    if (!fault.isEmpty()) return fault;

    uint32_t page = index.rootPage;
    for (jet::IndexNode node = jet::ReadIndexNode(file, page); !node.IsLeaf();
         node = jet::ReadIndexNode(file, page))
        page = node.entries.empty()
                   ? node.Tail()
                   : jet::ReadU32BigEndian(node.entries.front(), node.entries.front().size() - 4);
    QByteArray previous;
    for (int guard = 0; page != 0 && guard < 100000; ++guard) {
        const jet::IndexNode leaf = jet::ReadIndexNode(file, page);
        for (const QByteArray& entry : leaf.entries) {
            if (!previous.isEmpty() && !(previous < entry))
                return QStringLiteral("page %1: entries out of order").arg(page);
            previous = entry;
            const uint32_t pointer = jet::ReadU32BigEndian(entry, entry.size() - 4);
            const std::vector<QVariant> values =
                reader.ReadRow(tableName, {pointer >> 8, uint8_t(pointer & 0xff)});
            if (jet::EncodeIndexKey(table, index, values) != entry.left(entry.size() - 4))
                return QStringLiteral("page %1: an entry's key differs from its row").arg(page);
            ++entries;
        }
        page = leaf.Next();
    }
    return {};
}

// The pages of the original file that changed although they belong to none of the tables
// written (their definition, usage maps, data and index pages). Empty when there are none.
inline QString StrayChanges(const QByteArray& before, const QString& path,
                            const QStringList& tables) {
    const QByteArray after = ReadBytes(path);
    std::set<uint32_t> tablePages;
    std::set<uint32_t> mapPages;
    {
        jet::Writer writer(path);
        for (const QString& name : tables) {
            const jet::TableDefinition& table = writer.Table(name);
            tablePages.insert(table.page);
            mapPages.insert({table.ownedPagesMap >> 8, table.freePagesMap >> 8});
            for (const jet::Index& index : table.indexes)
                mapPages.insert(index.usageMapPointer >> 8);
        }
    }
    QStringList stray;
    for (int page = 0; page * jet::kPageSize < before.size(); ++page) {
        const QByteArray old = before.mid(page * jet::kPageSize, jet::kPageSize);
        const QByteArray now = after.mid(page * jet::kPageSize, jet::kPageSize);
        if (old == now || tablePages.count(page) || mapPages.count(page)) continue;
        const uint8_t type = uint8_t(old[0]);
        const uint32_t owner = jet::ReadU32(old, 4);
        const bool tablesOwn = (type == jet::kDataPage || type == jet::kLeafIndexPage ||
                                type == jet::kIntermediateIndexPage) &&
                               tablePages.count(owner);
        if (!tablesOwn) stray << QString::number(page);
    }
    return stray.join(' ');
}
