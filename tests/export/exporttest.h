#pragma once

// A small catalogue for the export tests: audio titles with and without tracks, a PC title
// with a listing, a video title; accented names and values with HTML and TAB characters.

#include <QStringList>

#include "store/catalogue.h"
#include "support/testsupport.h"

namespace exporttest {

// Vendor 8 "Björk" on the audio platform; titles 1 to 5 (see the comments below).
inline void AddTitles() {
    gDatabase->Execute(
        "insert into vendor (idvendor, nmvendor, idplatform) values (8, 'Björk', 1)");
    const QStringList rows = {
        // Audio, three tracks, a memo of two lines with HTML characters, a leftover listing.
        "1, 'Homogénic', 8, 1, 1, 1, 1, 80, 'HOMO1', 'never shown', 1715004, 3, "
        "'Line one' || char(13) || char(10) || 'x < y & \"z\"', 1",
        // Audio with no tracks at all; the identity -1.
        "2, 'Zero Tracks', 1, 1, 2, 4, 2, 50, char(0), char(0), -1, 0, char(0), 2",
        // PC with a listing of two lines and tracks that must never show.
        "3, 'Café Tycoon', 4, 3, 10, 21, 1, 91, 'CAFE', 'setup.exe' || char(13) || char(10) || "
        "'data' || char(9) || 'file.cab', NULL, 2, char(0), 1",
        // Audio that claims two tracks but has none stored.
        "4, 'Missing Tracks', 1, 1, 1, 1, 1, 40, char(0), char(0), 77, 2, char(0), 1",
        // Video, no tracks, no listing.
        "5, 'Nosferatu', 3, 2, 7, 16, 4, 65, 'NOS', char(0), NULL, 0, char(0), 3",
    };
    for (const QString& row : rows)
        gDatabase->Execute(
            "insert into title (idcd, nmcd, idvendor, idplatform, idtype, idspecific, "
            "idmediatype, rating, label, listing, TitleID, NumTracks, memo, nrcds) values (" +
            row + ")");
    const QStringList tracks = {"1, 0, 'Jóga'", "1, 1, 'Bachelorette'", "1, 2, 'Hunter'",
                                "3, 0, 'Menu music'", "3, 1, 'Credits'"};
    for (const QString& track : tracks)
        gDatabase->Execute("insert into Tracks (idcd, TrackID, TrackName) values (" + track + ")");
}

}  // namespace exporttest
