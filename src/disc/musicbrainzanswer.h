#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
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

// What every MusicBrainz answer shares. The JSON object an answer must be; false, with the
// reason, when it is none (notObject when it is valid JSON but no object).
bool ReadMusicBrainzObject(const QByteArray& json, QJsonObject& object, QString& problem,
                           const QString& notObject = "the answer is no JSON object.");
// The match of one medium of a release, the n-th (from 0) of its media; no tracks yet.
DiscMatch MusicBrainzMatch(const QJsonObject& release, qsizetype n);
// The artist credit as MusicBrainz writes it out: names and their join phrases.
QString MusicBrainzCredit(const QJsonArray& credit);
// The titles of a medium's tracks, in the order of their positions.
QStringList MusicBrainzTrackTitles(const QJsonArray& tracks);
