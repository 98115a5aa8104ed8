#pragma once

// Jet files (.mdb, the Deluxe CD player's database) opened as a Database of the store's own
// vocabulary. The file's tables are read through libmdb into an in-memory copy at opening, and
// every statement, recordset and join of the DAO layer runs on that copy.
//
// Changes (AddNew, Edit, Update, Delete) reach the file only through a JetWriter. Without a
// writer factory installed, or when the database was opened read-only, the rows refuse changes
// with error 3027. Database::Execute is always refused on a Jet file (3027): only row changes
// reach its writer.

#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

class Database;

// One row of one table, as the copy holds it before and after a change.
struct JetRowChange {
    enum Kind { Added, Changed, Deleted };
    Kind kind = Added;
    QString table;
    // Every column of the table, in the table's order.
    QStringList columns;
    // Changed and Deleted: the row as it was. Added and Changed: the row as it now is.
    QVariantList before;
    QVariantList after;
};

// Writes the changes made through a Jet database's recordsets into its file. Apply runs inside
// Update (or Delete) after the in-memory copy took the change; a VbError thrown from it undoes
// the change in the copy and reaches the caller of Update.
class JetWriter {
  public:
    virtual ~JetWriter() = default;
    virtual void Apply(const JetRowChange& change) = 0;
    // The changes applied between BeginUnit and EndUnit reach the file as one: EndUnit(true)
    // writes them all or, failing, none (and throws); EndUnit(false) drops them. A change
    // refused inside the unit drops only itself. A writer that writes each change at once
    // needs neither.
    virtual void BeginUnit() {}
    virtual void EndUnit(bool /*keep*/) {}
};

// Called once for every Jet file opened for writing. It may throw a VbError to refuse the file
// (the opening then fails with it) or return null to leave the rows read-only.
using JetWriterFactory = std::function<std::unique_ptr<JetWriter>(const QString& path)>;
void SetJetWriterFactory(JetWriterFactory factory);
