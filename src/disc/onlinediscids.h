#pragma once

#include <QList>
#include <QString>

#include "disc/discidentity.h"

// The identities by which the online databases know an audio CD, computed by libdiscid from
// its table of contents.
struct OnlineDiscIds {
    // MusicBrainz: the audio session only.
    QString musicBrainzId;
    // "first last leadout offset...", the form of MusicBrainz's fuzzy look-up.
    QString musicBrainzToc;
    // Where a disc MusicBrainz does not know can be added.
    QString submissionUrl;
    int audioTracks = 0;
    // CDDB: every track, data tracks included, as the CD players counted them.
    QString freedbId;
    // Each track's start in frames from the start of the disc, lead-in included.
    QList<int> freedbOffsets;
    int freedbSeconds = 0;
};

// False, with the reason, for a table libdiscid refuses.
bool ComputeOnlineDiscIds(const TableOfContents& toc, OnlineDiscIds& ids, QString& problem);
