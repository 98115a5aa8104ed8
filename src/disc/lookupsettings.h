#pragma once

#include <QString>

// Where the online look-up asks, from the program's settings (the registry-style file), with
// the public servers as defaults. VELMORA_MUSICBRAINZ_SERVER, VELMORA_GNUDB_SERVER and
// VELMORA_COVERART_SERVER name other servers, as tests and trials on one machine do.
struct LookupSettings {
    QString musicBrainzServer;
    QString gnudbServer;
    // The user name of the CDDB greeting.
    QString cddbUser;
    // The Cover Art Archive, and whether covers come at 1200 px rather than 500 (LargeCovers).
    QString coverArtServer = {};
    bool largeCovers = false;
};

// The settings' key, under which the values MusicBrainzServer, GnudbServer, CoverArtServer,
// LargeCovers and CddbUser live.
QString LookupSettingsKey();
LookupSettings ReadLookupSettings();

// "Velmora/1.0.0 ( http://www.dorviksoftware.example )": how the program introduces itself to
// the databases, as MusicBrainz asks every client to.
QByteArray LookupUserAgent();
