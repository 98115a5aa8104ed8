#pragma once

#include "disc/musicbrainzlookup.h"

// Asks MusicBrainz for the releases that carry a barcode, and then for the tracks of the disc
// the user chose, at the look-up's pace and under its rules.
class BarcodeLookup : public MusicBrainzLookup {
    Q_OBJECT

  public:
    using MusicBrainzLookup::MusicBrainzLookup;

    // Finished brings one match a disc of every release found, the tracks not yet named.
    void StartSearch(const QString& digits);
    // Finished brings match with its tracks named, or the reason they could not be asked.
    void StartTracks(const DiscMatch& match);
};
