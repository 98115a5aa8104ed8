#include "disc/discmatch.h"

#include <QRegularExpression>

namespace {

void ReplaceControls(QString& text) {
    // Besides the C0 and C1 controls, the Unicode line and paragraph separators break lines too.
    static const QRegularExpression controls("[\\p{Cc}\\x{2028}\\x{2029}]+");
    text = text.replace(controls, " ").trimmed();
}

}  // namespace

QString MatchMemoLine(const DiscMatch& match) {
    const QString line = match.source == "MusicBrainz" ? "MusicBrainz release " + match.identifier
                                                       : match.source + " " + match.identifier;
    return match.discCount > 1
               ? line + QString(" (disc %1 of %2)").arg(match.discNumber).arg(match.discCount)
               : line;
}

void ReplaceControlCharacters(DiscMatch& match) {
    for (QString* text : {&match.source, &match.identifier, &match.artist, &match.title,
                          &match.year, &match.country, &match.format})
        ReplaceControls(*text);
    for (QString& track : match.tracks) ReplaceControls(track);
}
