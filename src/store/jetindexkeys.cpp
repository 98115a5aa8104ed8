#include "store/jetindex.h"
#include "store/jetwriteerror.h"

namespace jet {

namespace {

constexpr uint8_t kAscendingValue = 0x7f;
constexpr uint8_t kAscendingNull = 0x00;

bool KeyTypeSupported(uint8_t type) {
    return type == kByte || type == kInteger || type == kLong;
}

QByteArray EncodeValue(const Column& column, const QVariant& value) {
    QByteArray bytes;
    switch (column.type) {
        case kByte:
            bytes.append(char(value.toInt()));
            break;
        case kInteger:
            bytes.append(char(((value.toInt() >> 8) & 0xff) ^ 0x80));
            bytes.append(char(value.toInt() & 0xff));
            break;
        default:
            AppendU32BigEndian(bytes, uint32_t(value.toInt()) ^ 0x80000000u);
            break;
    }
    return bytes;
}

}  // namespace

void CheckIndexSupported(const TableDefinition& table, const Index& index) {
    for (const IndexColumn& part : index.columns) {
        const Column& column = table.columns[part.column];
        if (!KeyTypeSupported(column.type))
            throw WriteError(kErrorUnsupported,
                             "The index " + index.name + " of table " + table.name +
                                 " sorts on the column " + column.name +
                                 ", whose type this writer cannot keep in an index.");
    }
}

QByteArray EncodeIndexKey(const TableDefinition& table, const Index& index,
                          const std::vector<QVariant>& values) {
    CheckIndexSupported(table, index);
    QByteArray key;
    for (const IndexColumn& part : index.columns) {
        const QVariant& value = values[part.column];
        QByteArray piece;
        if (!value.isValid() || value.isNull()) {
            piece.append(char(kAscendingNull));
        } else {
            piece.append(char(kAscendingValue));
            piece.append(EncodeValue(table.columns[part.column], value));
        }
        // Descending order stores every byte of the column's piece inverted.
        if (!part.ascending)
            for (char& byte : piece) byte = char(~byte);
        key.append(piece);
    }
    return key;
}

}  // namespace jet
