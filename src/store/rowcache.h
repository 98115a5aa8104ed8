#pragma once

// The rows a recordset has visited. A large join fills tens of thousands of them, so each row is
// one allocation: a fixed cell per column followed by its text and blob bytes. Values become Qt
// types only when a field is read.

#include <sqlite3.h>

#include <QVariant>
#include <memory>
#include <vector>

namespace dao_detail {

class CachedRow {
  public:
    static CachedRow FromStatement(sqlite3_stmt* statement, int columns);
    // values must be in stored form (see StoredForm).
    static CachedRow FromValues(const std::vector<QVariant>& values);

    QVariant Value(int column) const;
    bool IsNull(int column) const;

  private:
    enum Kind : quint8 { kNull, kInteger, kReal, kText, kBlob };
    struct Cell {
        qint64 payload;  // the integer, the double's bits, or the offset of the bytes
        quint32 size;
        Kind kind;
    };
    Cell CellAt(int column) const;
    void SetCell(int column, const Cell& cell);

    std::unique_ptr<char[]> data_;
};

// The value as the store keeps it: invalid for Null, qint64, double, QString or QByteArray.
// Booleans become 1 and 0, dates ISO text.
QVariant StoredForm(const QVariant& value);
// Binds a stored-form value to a statement parameter (1-based).
void Bind(sqlite3_stmt* statement, int parameter, const QVariant& value);

}  // namespace dao_detail
