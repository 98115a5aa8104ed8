#include "disc/musicbrainzanswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

namespace {

QString CreditText(const QJsonArray& credit) {
    QString text;
    for (const QJsonValue& name : credit)
        text += name["name"].toString() + name["joinphrase"].toString();
    return text;
}

bool CarriesDisc(const QJsonObject& medium, const QString& discId) {
    const QJsonArray discs = medium["discs"].toArray();
    return std::any_of(discs.begin(), discs.end(),
                       [&discId](const QJsonValue& disc) { return disc["id"] == discId; });
}

QStringList TrackTitles(const QJsonArray& tracks) {
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

}  // namespace

bool ReadMusicBrainzAnswer(const QByteArray& json, const QString& discId, int audioTracks,
                           QList<DiscMatch>& matches, QList<DiscMatch>& withoutTracks,
                           QString& problem) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        problem = "the answer is not valid JSON (" + error.errorString() + " at byte " +
                  QString::number(error.offset) + ").";
        return false;
    }
    if (!document.isObject() || !document["releases"].isArray()) {
        problem = "the answer holds no list of releases.";
        return false;
    }
    QList<DiscMatch> found, trackless;
    for (const QJsonValue& releaseValue : document["releases"].toArray()) {
        const QJsonObject release = releaseValue.toObject();
        const QJsonArray media = release["media"].toArray();
        for (const QJsonValue& mediumValue : media) {
            const QJsonObject medium = mediumValue.toObject();
            const QJsonArray tracks = medium["tracks"].toArray();
            const bool carries = CarriesDisc(medium, discId);
            if (!carries && (tracks.isEmpty() || tracks.size() != audioTracks)) continue;
            DiscMatch match;
            match.source = "MusicBrainz";
            match.identifier = release["id"].toString();
            match.artist = CreditText(release["artist-credit"].toArray());
            match.title = release["title"].toString();
            match.year = release["date"].toString().left(4);
            match.country = release["country"].toString();
            match.format = medium["format"].toString();
            match.discNumber = medium["position"].toInt(1);
            match.discCount = static_cast<int>(media.size());
            match.tracks = TrackTitles(tracks);
            match.discIdMatched = carries;
            (tracks.isEmpty() ? trackless : found) << match;
        }
    }
    matches = found;
    withoutTracks = trackless;
    return true;
}
