#include "toolkit/platform/mUtilityIni.h"

#include <QFile>
#include <QSaveFile>

namespace {

QString Folded(const QString& name) {
    return name.trimmed().toCaseFolded();
}

// The section name of a header line "[name]", or nothing for any other line.
std::optional<QString> HeaderName(const QString& line) {
    const QString text = line.trimmed();
    if (!text.startsWith('[')) return std::nullopt;
    const qsizetype close = text.lastIndexOf(']');
    if (close < 1) return std::nullopt;
    return text.mid(1, close - 1).trimmed();
}

bool IsComment(const QString& line) {
    const QString text = line.trimmed();
    return text.startsWith(';') || text.startsWith('#');
}

// The key of a "key=value" line; a line without "=" is a key without a value.
QString KeyOf(const QString& line) {
    return line.section('=', 0, 0).trimmed();
}

QString ValueOf(const QString& line) {
    const qsizetype equals = line.indexOf('=');
    if (equals < 0) return QString();
    QString value = line.mid(equals + 1).trimmed();
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    return value;
}

}  // namespace

IniFile::IniFile(const QString& path) : path_(path) {
    QFile file(path);
    if (!file.exists()) return;
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly)) bytes = file.readAll();
    // Taken for empty, an unreadable file would be replaced by the few keys written to it.
    if (file.error() != QFileDevice::NoError) {
        readError_ = file.errorString();
        return;
    }
    parse(bytes);
}

IniFile::IniFile(const QString& path, const QByteArray& bytes) : path_(path) {
    parse(bytes);
}

void IniFile::parse(const QByteArray& bytes) {
    DecodedText decoded = DecodeText(bytes);
    encoding_ = decoded.encoding;
    const QString& text = decoded.text;
    lines_.clear();
    lineEnds_.clear();
    lineEnd_ = "\r\n";
    // Each line keeps the break it had, so that a file written with mixed breaks (a value
    // holding a bare LF) reads back byte for byte.
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype lf = text.indexOf('\n', start);
        if (lf < 0) {
            lines_.append(text.mid(start));
            lineEnds_.append(QString());
            break;
        }
        const bool crlf = lf > start && text[lf - 1] == '\r';
        lines_.append(text.mid(start, lf - start - (crlf ? 1 : 0)));
        lineEnds_.append(crlf ? "\r\n" : "\n");
        if (lines_.size() == 1) lineEnd_ = lineEnds_.first();
        start = lf + 1;
    }
    indexSections();
}

void IniFile::indexSections() {
    sections_.clear();
    for (int i = 0; i < lines_.size(); ++i)
        if (const auto name = HeaderName(lines_[i])) {
            const QString folded = Folded(*name);
            if (!sections_.contains(folded)) sections_.insert(folded, i);
        }
}

int IniFile::sectionLine(const QString& section) const {
    return sections_.value(Folded(section), -1);
}

int IniFile::sectionEnd(int header) const {
    int end = header + 1;
    while (end < lines_.size() && !HeaderName(lines_[end])) ++end;
    return end;
}

int IniFile::keyLine(int header, const QString& key) const {
    const QString wanted = Folded(key);
    const int end = sectionEnd(header);
    for (int i = header + 1; i < end; ++i) {
        const QString& line = lines_[i];
        if (line.trimmed().isEmpty() || IsComment(line)) continue;
        if (KeyOf(line).toCaseFolded() == wanted) return i;
    }
    return -1;
}

bool IniFile::hasSection(const QString& section) const {
    return sectionLine(section) >= 0;
}

std::optional<QString> IniFile::value(const QString& section, const QString& key) const {
    const int header = sectionLine(section);
    if (header < 0) return std::nullopt;
    const int line = keyLine(header, key);
    if (line < 0) return std::nullopt;
    return ValueOf(lines_[line]);
}

void IniFile::insertLine(int at, const QString& line) {
    if (at == lines_.size() && !lineEnds_.isEmpty() && lineEnds_.last().isEmpty())
        lineEnds_.last() = lineEnd_;
    lines_.insert(at, line);
    lineEnds_.insert(at, lineEnd_);
    for (int& header : sections_)
        if (header >= at) ++header;
}

void IniFile::addSection(const QString& section) {
    if (hasSection(section)) return;
    if (!lines_.isEmpty() && !lines_.last().trimmed().isEmpty())
        insertLine(lines_.size(), QString());
    insertLine(lines_.size(), '[' + section + ']');
    sections_.insert(Folded(section), lines_.size() - 1);
}

void IniFile::setValue(const QString& section, const QString& key, const QString& value) {
    addSection(section);
    const int header = sectionLine(section);
    const int line = keyLine(header, key);
    if (line >= 0) {
        lines_[line] = KeyOf(lines_[line]) + '=' + value;
    } else {
        // New keys go after the section's last entry, ahead of the blank lines that separate
        // it from the next section.
        int at = sectionEnd(header);
        while (at > header + 1 && lines_[at - 1].trimmed().isEmpty()) --at;
        insertLine(at, key + '=' + value);
    }
    // A line break in the value splits the line, as it does on disk.
    if (value.contains('\r') || value.contains('\n')) parse(EncodeText(text(), encoding_));
}

QString IniFile::text() const {
    QString text;
    for (qsizetype i = 0; i < lines_.size(); ++i) text += lines_[i] + lineEnds_[i];
    return text;
}

bool IniFile::save() const {
    if (!readError_.isEmpty()) return false;
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return false;
    // A short write (a full disc, the file size limit) must not replace the old file.
    const QByteArray bytes = EncodeText(text(), encoding_);
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
