#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "disc/discmatch.h"

// The media of a MusicBrainz web service answer (JSON, a disc ID or a table of contents looked
// up with its releases' artist credits and recordings) that can be the disc: those that carry
// its disc ID, and those with its number of tracks. A release whose medium carries the disc
// ID but lists no tracks cannot fill a title: it goes into withoutTracks instead. False, with
// the reason, for an answer that is not such JSON.
bool ReadMusicBrainzAnswer(const QByteArray& json, const QString& discId, int audioTracks,
                           QList<DiscMatch>& matches, QList<DiscMatch>& withoutTracks,
                           QString& problem);
