#include "disc/cddbanswer.h"

#include <QRegularExpression>
#include <QStringDecoder>

namespace {

// More than a CD can hold; guards against entries that number their tracks wildly.
const int kMaxTracks = 99;
// Servers list every entry of a similar table; more than this are reading for nothing.
const int kMaxEntries = 10;

QString Decoded(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

QStringList Lines(const QByteArray& answer) {
    QStringList lines = Decoded(answer).split('\n');
    for (QString& line : lines)
        if (line.endsWith('\r')) line.chop(1);
    return lines;
}

// The server's own words for an answer it gave instead of the one asked for.
QString ServerSaid(const QString& line) {
    return line.trimmed().isEmpty() ? QString("the server gave an empty answer.")
                                    : "the server answered \"" + line.trimmed() + "\".";
}

// xmcd escapes a newline, a tab and the backslash itself.
QString Unescaped(const QString& value) {
    QString text;
    for (qsizetype at = 0; at < value.size(); ++at) {
        if (value[at] != '\\' || at + 1 == value.size()) {
            text += value[at];
            continue;
        }
        const QChar next = value[++at];
        text += next == 'n' || next == 't' ? QChar(' ') : next;
    }
    return text;
}

// The line that ends a list or an entry; an answer without it was cut off.
qsizetype EndLine(const QStringList& lines) {
    return lines.indexOf(".", 1);
}

const QString kCutOff = "the server's answer ended before its closing \".\" line.";

// Programs that write no DYEAR keep the year in the extended data: "YEAR: 1999 ID3G: 17".
QString ExtendedDataYear(const QString& extended) {
    static const QRegularExpression year("\\bYEAR:\\s*(\\d{4})\\b");
    return year.match(extended).captured(1);
}

}  // namespace

CddbQueryResult ReadCddbQueryAnswer(const QByteArray& answer, QList<CddbEntryName>& entries,
                                    QString& problem) {
    const QStringList lines = Lines(answer);
    const QString status = lines.first();
    const QString code = status.left(3);
    if (code == "202") return CddbQueryResult::NoMatch;
    QList<CddbEntryName> found;
    auto take = [&found](const QString& line) {
        const QStringList parts = line.split(' ');
        if (parts.size() < 3 || found.size() == kMaxEntries) return;
        found << CddbEntryName{parts[0], parts[1], line.section(' ', 2).trimmed()};
    };
    if (code == "200") {
        take(status.mid(4));
    } else if (code == "210" || code == "211") {
        const qsizetype end = EndLine(lines);
        if (end < 0) {
            problem = kCutOff;
            return CddbQueryResult::Refused;
        }
        for (qsizetype at = 1; at < end; ++at) take(lines[at]);
    } else {
        problem = ServerSaid(status);
        return CddbQueryResult::Refused;
    }
    if (found.isEmpty()) {
        problem = "the server's list of matches could not be read: \"" + status + "\".";
        return CddbQueryResult::Refused;
    }
    entries = found;
    return CddbQueryResult::Found;
}

bool ReadCddbEntry(const QByteArray& answer, const CddbEntryName& name, DiscMatch& match,
                   QString& problem) {
    const QStringList lines = Lines(answer);
    if (!lines.first().startsWith("210")) {
        problem = ServerSaid(lines.first());
        return false;
    }
    const qsizetype end = EndLine(lines);
    if (end < 0) {
        problem = kCutOff;
        return false;
    }
    QString discTitle, year, extended;
    QStringList tracks;
    bool anyTrack = false;
    for (qsizetype at = 1; at < end; ++at) {
        const QString& line = lines[at];
        const qsizetype equals = line.indexOf('=');
        if (line.startsWith('#') || equals < 0) continue;
        const QString key = line.left(equals).trimmed();
        const QString value = Unescaped(line.mid(equals + 1));
        if (key == "DTITLE") {
            discTitle += value;
        } else if (key == "DYEAR") {
            year += value.trimmed();
        } else if (key == "EXTD") {
            extended += value;
        } else if (key.startsWith("TTITLE")) {
            bool number = false;
            const int track = key.mid(6).toInt(&number);
            if (!number || track < 0 || track >= kMaxTracks) continue;
            while (tracks.size() <= track) tracks << QString();
            tracks[track] += value;
            anyTrack = true;
        }
    }
    if (discTitle.trimmed().isEmpty() && !anyTrack) {
        problem = "the entry holds no disc title.";
        return false;
    }
    DiscMatch read;
    read.source = "gnudb";
    read.identifier = name.genre + "/" + name.discId;
    // "Artist / Title"; an entry without the separator names a disc by its artist alone.
    const qsizetype separator = discTitle.indexOf(" / ");
    read.artist = (separator < 0 ? discTitle : discTitle.left(separator)).trimmed();
    read.title = (separator < 0 ? discTitle : discTitle.mid(separator + 3)).trimmed();
    read.year = year.isEmpty() ? ExtendedDataYear(extended) : year;
    read.format = "CD";
    for (QString& track : tracks) track = track.trimmed();
    read.tracks = tracks;
    match = read;
    return true;
}
