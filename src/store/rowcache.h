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

    // How text compares under a column's collation.
    enum class TextOrder { Binary, NoCase, Jet };
    // Below 0, 0 or above 0 as SQLite's ORDER BY puts a's value of column before, level with
    // or after b's: Null first, then numbers by value, then text, then blobs.
    static int Compare(const CachedRow& a, const CachedRow& b, int column, TextOrder order);

  private:
    // Layout: a kind byte per column, then the end offset of each column's bytes, then the
    // bytes. An integer takes as few bytes as hold it, a Null none. Offsets take 2 bytes each,
    // or 4 in a row whose bytes pass 64 KB (a long listing or memo).
    enum Kind : quint8 { kNull, kInteger, kReal, kText, kBlob };
    struct Span {
        Kind kind;
        const char* bytes;
        quint32 size;
    };
    static CachedRow Build(const Span* spans, int columns);
    Span At(int column) const;

    std::unique_ptr<char[]> data_;
    int columns_ = 0;
    bool wideOffsets_ = false;
};

// The value as the store keeps it: invalid for Null, qint64, double, QString or QByteArray.
// Booleans become 1 and 0, dates ISO text.
QVariant StoredForm(const QVariant& value);
// Binds a stored-form value to a statement parameter (1-based).
void Bind(sqlite3_stmt* statement, int parameter, const QVariant& value);

}  // namespace dao_detail
