#pragma once

// The program's own writer of Jet 4 files: appends rows to a table of an existing file and
// changes rows in place, keeping the table's usage maps, row count, autonumber and indexes right.
// Each row is complete on disk before the next one starts, or, inside a unit, the unit's rows
// together; a row that is refused (a duplicate key, a value that does not fit, a long value)
// leaves the file as it was, and so does a row or unit whose writing fails (a full disk) or is
// cut off by the end of the process (see PageFile).

#include <QHash>
#include <QString>
#include <QVariant>
#include <map>
#include <memory>
#include <vector>

#include "jet/jetpages.h"
#include "jet/jettable.h"

namespace jet {

class Writer {
  public:
    // Opens the file for writing; throws WriteError (missing, locked, read-only, not Jet, Jet 3).
    explicit Writer(const QString& path);

    const TableDefinition& Table(const QString& name);
    // Values in the order of the table's columns; an invalid QVariant is Null. An autonumber
    // column takes the table's next number whatever is given.
    RowLocation AppendRow(const QString& table, std::vector<QVariant> values);
    // Replaces all values of the row at the location (as the file's readers report it).
    void ChangeRow(const QString& table, RowLocation row, const std::vector<QVariant>& values);
    std::vector<QVariant> ReadRow(const QString& table, RowLocation row);
    // The first live row of the table that holds these values (Null matching Null), at the
    // location its readers know it by; throws when there is none.
    RowLocation FindRow(const QString& table, const std::vector<QVariant>& values);
    // Values for the table's columns from names (any case); columns not named are Null.
    std::vector<QVariant> ValuesByName(const QString& table, const QVariantHash& named);
    // The rows written from BeginUnit to EndUnit(true) reach the file in one Commit: after a
    // failure or a cut-off the file holds all of them or none. EndUnit(false) drops them; a row
    // refused inside the unit drops only itself.
    void BeginUnit();
    void EndUnit(bool keep);
    // The file's pages as the writer sees them, for checks of what was written.
    PageFile& Pages() { return *file_; }

  private:
    struct TableState {
        TableDefinition definition;
        std::vector<uint32_t> freePages;  // pages of the table that may take another row
    };
    TableState& State(const QString& name);
    RowLocation PlaceRow(TableState& table, const QByteArray& row, uint16_t slotFlags);
    void RefuseDuplicates(const TableDefinition& table, const std::vector<QVariant>& values);
    RowLocation FollowOverflow(RowLocation row);
    // The end of one row: written at once, or kept for the end of the unit.
    void FinishRow();
    // Undoes the row being written, and with unit the rows of the unit too.
    void DropChanges(bool unit);

    QString path_;
    std::unique_ptr<PageFile> file_;
    std::map<QString, uint32_t> tablePages_;
    std::map<QString, TableState> tables_;
    bool inUnit_ = false;
};

}  // namespace jet
