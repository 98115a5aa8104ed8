#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// One disc an online database offers for a table of contents: a medium of a MusicBrainz
// release, or a gnudb entry.
struct DiscMatch {
    QString source;
    // The release's MBID, or the gnudb entry's "genre/discid".
    QString identifier;
    // The artist credit as printed.
    QString artist;
    QString title;
    QString year;
    QString country;
    QString format;
    int discNumber = 1;
    int discCount = 1;
    // The names of the medium's tracks in their order.
    QStringList tracks;
    // How many tracks the medium has, also where their names are not yet known (a release
    // found by barcode).
    int trackCount = 0;
    // The medium carries the disc's own ID, not only a similar table.
    bool discIdMatched = false;
};

// The memo line that records where a title's names came from; a disc of a set says which
// ("(disc 2 of 3)").
QString MatchMemoLine(const DiscMatch& match);

// Each run of control characters (a tab, a line end, a NUL, a bell...) in the match's text
// becomes one space, and none is left at either end: the databases' text goes into one-line
// fields, and the track names are joined by line ends.
void ReplaceControlCharacters(DiscMatch& match);
