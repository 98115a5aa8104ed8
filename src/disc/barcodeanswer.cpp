#include "disc/barcodeanswer.h"

#include <QRegularExpression>

#include "disc/musicbrainzanswer.h"

QString BarcodeDigits(const QString& typed) {
    QString digits = typed;
    digits.remove(QRegularExpression("[\\s-]"));
    static const QRegularExpression onlyDigits("^[0-9]+$");
    return onlyDigits.match(digits).hasMatch() ? digits : QString();
}

bool BarcodeCheckDigitHolds(const QString& digits) {
    if (digits.size() != 12 && digits.size() != 13) return true;
    // From the right, leaving out the check digit, the weights run 3, 1, 3, ...
    int sum = 0;
    for (qsizetype index = 0; index < digits.size() - 1; ++index) {
        const qsizetype fromRight = digits.size() - 2 - index;
        sum += digits[index].digitValue() * (fromRight % 2 == 0 ? 3 : 1);
    }
    return (10 - sum % 10) % 10 == digits.back().digitValue();
}

bool ReadBarcodeSearchAnswer(const QByteArray& json, QList<DiscMatch>& matches, QString& problem) {
    QJsonObject answer;
    if (!ReadMusicBrainzObject(json, answer, problem)) return false;
    if (!answer["releases"].isArray()) {
        problem = "the answer holds no list of releases.";
        return false;
    }
    QList<DiscMatch> found;
    for (const QJsonValue& releaseValue : answer["releases"].toArray()) {
        const QJsonObject release = releaseValue.toObject();
        const QJsonArray media = release["media"].toArray();
        for (qsizetype n = 0; n < media.size(); ++n) {
            DiscMatch match = MusicBrainzMatch(release, n);
            match.trackCount = media[n]["track-count"].toInt();
            if (!match.identifier.isEmpty()) found << match;
        }
    }
    matches = found;
    return true;
}

bool ReadBarcodeReleaseAnswer(const QByteArray& json, DiscMatch& match, QString& problem) {
    QJsonObject release;
    if (!ReadMusicBrainzObject(json, release, problem)) return false;
    if (release["id"].toString() != match.identifier) {
        problem = "the answer is not the release asked for.";
        return false;
    }
    for (const QJsonValue& mediumValue : release["media"].toArray()) {
        const QJsonObject medium = mediumValue.toObject();
        if (medium["position"].toInt() != match.discNumber) continue;
        match.tracks = MusicBrainzTrackTitles(medium["tracks"].toArray());
        match.trackCount = static_cast<int>(match.tracks.size());
        if (release["artist-credit"].isArray())
            match.artist = MusicBrainzCredit(release["artist-credit"].toArray());
        if (release["title"].isString()) match.title = release["title"].toString();
        return true;
    }
    problem = QString("the release has no disc %1.").arg(match.discNumber);
    return false;
}
