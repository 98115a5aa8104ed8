#include "disc/discmatch.h"

QString MatchMemoLine(const DiscMatch& match) {
    const QString line = match.source == "MusicBrainz" ? "MusicBrainz release " + match.identifier
                                                       : match.source + " " + match.identifier;
    return match.discCount > 1
               ? line + QString(" (disc %1 of %2)").arg(match.discNumber).arg(match.discCount)
               : line;
}
