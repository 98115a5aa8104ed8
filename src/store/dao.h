#pragma once

// A small DAO-style layer over SQLite: the vocabulary the program speaks to its catalogue.
// SQL stays text built by concatenation; the layer makes SQLite behave as the program expects
// of Jet (like-patterns, qualified field names, declared text widths, counters, record counts).
// Every failure is thrown as a VbError carrying Jet's number and text where Jet had one.

#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <vector>

#include "toolkit/vb/vberror.h"

struct sqlite3;
class Recordset;
class Database;
namespace dao_detail {
struct Connection;
struct RecordsetData;
}  // namespace dao_detail

// Recordset types and options, with DAO's numbers.
enum RecordsetTypeEnum {
    dbOpenDefault = 0,  // a table name opens as a table, anything else as a dynaset
    dbOpenTable = 1,
    dbOpenDynaset = 2,
    dbOpenSnapshot = 4,
    dbOpenForwardOnly = 8,
};
enum RecordsetOptionEnum { dbReadOnly = 4 };
enum DatabaseTypeEnum { dbVersion40 = 64 };

// Jet's error numbers for refusals the program meets.
enum JetError {
    jetNoCurrentRecord = 3021,
    jetDuplicateValues = 3022,
    jetObjectReadOnly = 3027,
    jetNotValidPassword = 3031,
    jetTooFewParameters = 3061,
    jetCharactersAfterEnd = 3142,
    jetFieldTooSmall = 3163,
    jetCouldNotFindFile = 3024,
    jetFileAlreadyExists = 3204,
    jetExclusivelyLocked = 3045,
    jetSyntaxError = 3075,
    jetItemNotFound = 3265,
    jetUpdateWithoutAddNew = 3020,
    jetDataConversion = 3421,
};

// One column of the current row. A light handle: it reads and writes through its recordset.
class Field {
  public:
    Field(Recordset* recordset, int index) : recordset_(recordset), index_(index) {}

    // The value of the current row; a Null reads as an invalid (isNull) QVariant.
    QVariant Value() const;
    // Only between AddNew or Edit and Update.
    void SetValue(const QVariant& value) const;
    bool IsNull() const { return Value().isNull(); }
    // Declared width of a text column (TEXT(50) gives 50); bytes of a number column.
    int Size() const;
    // The column's plain name, and "table.column" where the column comes from a table.
    QString Name() const;
    QString QualifiedName() const;

  private:
    Recordset* recordset_;
    int index_;
};

class Recordset {
  public:
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // DAO's BOF and EOF; EOF itself is taken by the C library.
    bool IsBOF() const;
    bool IsEOF() const;
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    // A dynaset counts the rows visited so far (1 right after opening a non-empty one) and the
    // full count after MoveLast; a table-type recordset knows its count at once.
    long RecordCount() const;
    // 0-based position of the current row; -1 at BOF or EOF.
    long AbsolutePosition() const;
    void SetAbsolutePosition(long position);

    // By index (0-based) or by name: plain, or "table.column" over a join.
    Field Fields(int index);
    Field Fields(const QString& name);
    int FieldCount() const;
    // Shorthand for Fields(name).Value().
    QVariant operator[](const QString& name) { return Fields(name).Value(); }

    // Editing: AddNew or Edit, set fields, Update. The new counter value of a row is readable
    // between AddNew and Update. Read-only recordsets refuse with error 3027.
    void AddNew();
    void Edit();
    void Update();
    void CancelUpdate();
    void Delete();
    bool Updatable() const;

    // Runs the statement again; the first row becomes current.
    void Requery();
    // Stored as DAO stores them; applied by OpenRecordset on this recordset, as DAO does.
    QString Filter() const;
    void SetFilter(const QString& filter);
    QString Sort() const;
    void SetSort(const QString& sort);
    std::unique_ptr<Recordset> OpenRecordset(int type = dbOpenDynaset, int options = 0);

    QString SQL() const;
    int Type() const;
    void Close();

  private:
    friend class Database;
    friend class Field;
    Recordset();
    std::unique_ptr<dao_detail::RecordsetData> d;
};

class Database {
  public:
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // A table name or a statement. One statement per call: text after it is refused (3142).
    std::unique_ptr<Recordset> OpenRecordset(const QString& source, int type = dbOpenDefault,
                                             int options = 0);
    // One statement that returns no rows.
    void Execute(const QString& sql, int options = 0);
    long RecordsAffected() const;
    // A transaction around a run of writes. A statement that fails inside it undoes only
    // itself; everything else written stays and is kept by CommitTrans, or undone by Rollback.
    // Transactions nest as DAO's do: an inner CommitTrans keeps its writes for the outer one to
    // keep or undo, an inner Rollback undoes its own writes alone. The engine may undo the whole
    // transaction by itself (a full disk): Rollback then only closes the level, and CommitTrans
    // refuses (3034), as it does without a BeginTrans. On a Jet file the writes of the outermost
    // transaction reach the file together, whole or not at all.
    void BeginTrans();
    void CommitTrans();
    void Rollback();
    bool InTransaction() const;
    // Closes the file; recordsets still open lose their statements and refuse further work.
    void Close();
    bool IsOpen() const;
    QString Name() const;
    // The SQLite connection, for the benchmark and for tests that inspect the file.
    sqlite3* Handle() const;

  private:
    friend class DBEngine;
    Database();
    std::shared_ptr<dao_detail::Connection> connection_;
};

class DBEngine {
  public:
    // connect is ";pwd=" and the password. The file is held exclusively while open.
    static std::unique_ptr<Database> OpenDatabase(const QString& path, bool exclusive = false,
                                                  bool readOnly = false,
                                                  const QString& connect = QString());
    // Copies source into a new, compact target; fails (3204) when target exists. The password
    // is taken from ";pwd=" in password and carried into the target.
    static void CompactDatabase(const QString& source, const QString& target,
                                const QString& locale = QString(), int options = 0,
                                const QString& password = QString());
    // The errors of the last failing engine call, most specific first.
    static QList<VbError> Errors();

    // Writes the password check into a new catalogue file (used when making the template).
    static void SetDatabasePassword(const QString& path, const QString& password);
};
