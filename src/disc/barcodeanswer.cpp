#include "disc/barcodeanswer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <algorithm>

namespace {

QString CreditText(const QJsonArray& credit) {
    QString text;
    for (const QJsonValue& name : credit)
        text += name["name"].toString() + name["joinphrase"].toString();
    return text;
}

bool ParseObject(const QByteArray& json, QJsonObject& object, QString& problem) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError) {
        problem = "the answer is not valid JSON (" + error.errorString() + " at byte " +
                  QString::number(error.offset) + ").";
        return false;
    }
    if (!document.isObject()) {
        problem = "the answer is no JSON object.";
        return false;
    }
    object = document.object();
    return true;
}

}  // namespace

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
    if (!ParseObject(json, answer, problem)) return false;
    if (!answer["releases"].isArray()) {
        problem = "the answer holds no list of releases.";
        return false;
    }
    QList<DiscMatch> found;
    for (const QJsonValue& releaseValue : answer["releases"].toArray()) {
        const QJsonObject release = releaseValue.toObject();
        const QJsonArray media = release["media"].toArray();
        for (qsizetype index = 0; index < media.size(); ++index) {
            const QJsonObject medium = media[index].toObject();
            DiscMatch match;
            match.source = "MusicBrainz";
            match.identifier = release["id"].toString();
            match.artist = CreditText(release["artist-credit"].toArray());
            match.title = release["title"].toString();
            match.year = release["date"].toString().left(4);
            match.country = release["country"].toString();
            match.format = medium["format"].toString();
            match.discNumber = medium["position"].toInt(static_cast<int>(index) + 1);
            match.discCount = static_cast<int>(media.size());
            match.trackCount = medium["track-count"].toInt();
            if (!match.identifier.isEmpty()) found << match;
        }
    }
    matches = found;
    return true;
}

bool ReadBarcodeReleaseAnswer(const QByteArray& json, DiscMatch& match, QString& problem) {
    QJsonObject release;
    if (!ParseObject(json, release, problem)) return false;
    if (release["id"].toString() != match.identifier) {
        problem = "the answer is not the release asked for.";
        return false;
    }
    for (const QJsonValue& mediumValue : release["media"].toArray()) {
        const QJsonObject medium = mediumValue.toObject();
        if (medium["position"].toInt() != match.discNumber) continue;
        QList<QJsonObject> tracks;
        for (const QJsonValue& track : medium["tracks"].toArray()) tracks << track.toObject();
        std::stable_sort(tracks.begin(), tracks.end(),
                         [](const QJsonObject& a, const QJsonObject& b) {
                             return a["position"].toInt() < b["position"].toInt();
                         });
        match.tracks.clear();
        for (const QJsonObject& track : tracks) match.tracks << track["title"].toString();
        match.trackCount = static_cast<int>(match.tracks.size());
        if (release["artist-credit"].isArray())
            match.artist = CreditText(release["artist-credit"].toArray());
        if (release["title"].isString()) match.title = release["title"].toString();
        return true;
    }
    problem = QString("the release has no disc %1.").arg(match.discNumber);
    return false;
}
