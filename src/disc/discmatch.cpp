#include "disc/discmatch.h"

QString MatchMemoLine(const DiscMatch& match) {
    return match.source == "MusicBrainz" ? "MusicBrainz release " + match.identifier
                                         : match.source + " " + match.identifier;
}
