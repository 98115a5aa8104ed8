#include "toolkit/platform/wineregistry.h"

#include <QFile>

#include "toolkit/platform/textencoding.h"

namespace {

// Reads a quoted string starting at text[at] == '"'; at ends behind the closing quote. Wine
// writes "\\", "\"", "\n", "\r", "\t", "\0" and "\x" followed by hexadecimal digits.
std::optional<QString> QuotedString(const QString& text, qsizetype& at) {
    if (at >= text.size() || text[at] != '"') return std::nullopt;
    QString result;
    for (++at; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c == '"') {
            ++at;
            return result;
        }
        if (c != '\\' || at + 1 >= text.size()) {
            result += c;
            continue;
        }
        const QChar escaped = text[++at];
        if (escaped == 'n') {
            result += '\n';
        } else if (escaped == 'r') {
            result += '\r';
        } else if (escaped == 't') {
            result += '\t';
        } else if (escaped == '0') {
            result += QChar(0);
        } else if (escaped == 'x') {
            qsizetype end = at + 1;
            while (end < text.size() && end - at <= 4 && isxdigit(text[end].toLatin1())) ++end;
            bool ok = false;
            const uint code = text.mid(at + 1, end - at - 1).toUInt(&ok, 16);
            if (ok) result += QChar(static_cast<char16_t>(code));
            at = end - 1;
        } else {
            result += escaped;
        }
    }
    return std::nullopt;
}

QString Unescaped(const QString& keyPath) {
    return QString(keyPath).replace("\\\\", "\\");
}

}  // namespace

WineRegistry::WineRegistry(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return;
    const QString text = DecodeText(file.readAll()).text;
    QHash<QString, QString>* current = nullptr;
    for (QString line : text.split('\n')) {
        if (line.endsWith('\r')) line.chop(1);
        if (line.startsWith('[')) {
            const qsizetype close = line.indexOf(']');
            current =
                close > 0 ? &keys_[Unescaped(line.mid(1, close - 1)).toCaseFolded()] : nullptr;
            continue;
        }
        if (!current || !line.startsWith('"')) continue;
        qsizetype at = 0;
        const std::optional<QString> name = QuotedString(line, at);
        if (!name || at >= line.size() || line[at] != '=') continue;
        ++at;
        if (const std::optional<QString> value = QuotedString(line, at))
            current->insert(name->toCaseFolded(), *value);
    }
}

std::optional<QString> WineRegistry::Value(const QString& keyPath, const QString& valueName) const {
    const auto key = keys_.constFind(keyPath.toCaseFolded());
    if (key == keys_.cend()) return std::nullopt;
    const auto value = key->constFind(valueName.toCaseFolded());
    if (value == key->cend()) return std::nullopt;
    return *value;
}
