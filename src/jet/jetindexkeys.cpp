#include "jet/jetindex.h"
#include "jet/jetwriteerror.h"

#include <map>

namespace jet {

namespace {

constexpr uint8_t kAscendingValue = 0x7f;
constexpr uint8_t kAscendingNull = 0x00;

constexpr uint16_t kGeneralSortOrder = 0x409;
constexpr char kTextKeyEnd[] = {0x01, 0x00};

// Access's General sort order (version 0) as far as its own files show it: the weights of the
// letters, the same for both cases, and of the digits met in those files. Other characters
// are refused rather than guessed.
int GeneralSortWeight(QChar character) {
    static const std::map<char16_t, int> weights = {
        {u'a', 0x4a}, {u'b', 0x4c}, {u'c', 0x4d}, {u'd', 0x4f}, {u'e', 0x51}, {u'f', 0x53},
        {u'g', 0x55}, {u'h', 0x57}, {u'i', 0x59}, {u'j', 0x5b}, {u'l', 0x5e}, {u'm', 0x60},
        {u'n', 0x62}, {u'o', 0x64}, {u'p', 0x66}, {u'q', 0x68}, {u'r', 0x69}, {u's', 0x6b},
        {u't', 0x6d}, {u'u', 0x6f}, {u'v', 0x71}, {u'x', 0x75}, {u'y', 0x76}, {u'1', 0x38},
        {u'2', 0x3a}, {u'3', 0x3c}};
    const auto found = weights.find(character.toLower().unicode());
    return found == weights.end() || character.unicode() > 0x7f ? -1 : found->second;
}

bool KeyTypeSupported(const Column& column) {
    if (column.type == kText)
        return column.sortOrder == kGeneralSortOrder && column.sortVersion == 0;
    return column.type == kByte || column.type == kInteger || column.type == kLong;
}

QByteArray EncodeTextValue(const Column& column, const QString& text) {
    QByteArray bytes;
    for (QChar character : text) {
        const int weight = GeneralSortWeight(character);
        if (weight < 0)
            throw WriteError(kErrorUnsupported,
                             "The text '" + text +
                                 "' cannot be placed in the index on the column " + column.name +
                                 ": this writer does not know where the character '" + character +
                                 "' sorts.");
        bytes.append(char(weight));
    }
    if (bytes.isEmpty())
        throw WriteError(kErrorUnsupported,
                         "An empty text cannot be placed in the index on the "
                         "column " +
                             column.name + ".");
    bytes.append(kTextKeyEnd, sizeof kTextKeyEnd);
    return bytes;
}

QByteArray EncodeValue(const Column& column, const QVariant& value) {
    QByteArray bytes;
    switch (column.type) {
        case kText:
            return EncodeTextValue(column, value.toString());
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
        if (!KeyTypeSupported(column))
            throw WriteError(kErrorUnsupported,
                             "The index " + index.name + " of table " + table.name +
                                 " sorts on the column " + column.name +
                                 ", whose type or sort order this writer cannot keep in an index.");
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
