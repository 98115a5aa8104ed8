#include "disc/musicbrainzanswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace {

bool CarriesDisc(const QJsonObject& medium, const QString& discId) {
    const QJsonArray discs = medium["discs"].toArray();
    return std::any_of(discs.begin(), discs.end(),
                       [&discId](const QJsonValue& disc) { return disc["id"] == discId; });
}

}  // namespace

QString MusicBrainzCredit(const QJsonArray& credit) {
    QString text;
    for (const QJsonValue& name : credit)
        text += name["name"].toString() + name["joinphrase"].toString();
    return text;
}

QStringList MusicBrainzTrackTitles(const QJsonArray& tracks) {
    QList<QJsonObject> ordered;
    for (const QJsonValue& track : tracks) ordered << track.toObject();
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const QJsonObject& a, const QJsonObject& b) {
                         return a["position"].toInt() < b["position"].toInt();
                     });
    QStringList titles;
    for (const QJsonObject& track : ordered) titles << track["title"].toString();
    return titles;
}

bool ReadMusicBrainzObject(const QByteArray& json, QJsonObject& object, QString& problem,
                           const QString& notObject) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        problem = "the answer is not valid JSON (" + error.errorString() + " at byte " +
                  QString::number(error.offset) + ").";
        return false;
    }
    if (!document.isObject()) {
        problem = notObject;
        return false;
    }
    object = document.object();
    return true;
}

DiscMatch MusicBrainzMatch(const QJsonObject& release, qsizetype n) {
    const QJsonArray media = release["media"].toArray();
    const QJsonObject medium = media[n].toObject();
    DiscMatch match;
    match.source = "MusicBrainz";
    match.identifier = release["id"].toString();
    match.artist = MusicBrainzCredit(release["artist-credit"].toArray());
    match.title = release["title"].toString();
    match.year = release["date"].toString().left(4);
    match.country = release["country"].toString();
    match.format = medium["format"].toString();
    match.discNumber = medium["position"].toInt(static_cast<int>(n) + 1);
    match.discCount = static_cast<int>(media.size());
    return match;
}

bool ReadMusicBrainzAnswer(const QByteArray& json, const QString& discId, int audioTracks,
                           QList<DiscMatch>& matches, QList<DiscMatch>& withoutTracks,
                           QString& problem) {
    QJsonObject document;
    const QString noReleases = "the answer holds no list of releases.";
    if (!ReadMusicBrainzObject(json, document, problem, noReleases)) return false;
    if (!document["releases"].isArray()) {
        problem = noReleases;
        return false;
    }
    QList<DiscMatch> found, trackless;
    for (const QJsonValue& releaseValue : document["releases"].toArray()) {
        const QJsonObject release = releaseValue.toObject();
        const QJsonArray media = release["media"].toArray();
        for (qsizetype n = 0; n < media.size(); ++n) {
            const QJsonObject medium = media[n].toObject();
            const QJsonArray tracks = medium["tracks"].toArray();
            const bool carries = CarriesDisc(medium, discId);
            if (!carries && (tracks.isEmpty() || tracks.size() != audioTracks)) continue;
            DiscMatch match = MusicBrainzMatch(release, n);
            match.discNumber = medium["position"].toInt(1);
            match.tracks = MusicBrainzTrackTitles(tracks);
            match.discIdMatched = carries;
            (tracks.isEmpty() ? trackless : found) << match;
        }
    }
    matches = found;
    withoutTracks = trackless;
    return true;
}
