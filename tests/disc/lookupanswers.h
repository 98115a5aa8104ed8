#pragma once

// Answers in the databases' own formats for a disc of three tracks: MusicBrainz JSON and
// CDDB over HTTP.

#include <QByteArray>
#include <QString>

#include "disc/discidentity.h"

namespace lookupanswers {

// Tracks at 0:02, 3:02 and 5:32, the lead-out at 5:42.
inline TableOfContents ThreeTracks() {
    return {{0, 13500, 24750}, 25500};
}

inline QByteArray Tracks(const QList<QByteArray>& titles) {
    QByteArray json;
    for (int index = 0; index < titles.size(); ++index)
        json += (index ? "," : "") + QByteArray("{\"position\":") + QByteArray::number(index + 1) +
                ",\"title\":\"" + titles[index] + "\",\"length\":180000}";
    return "[" + json + "]";
}

// A release with one medium per entry of media (its JSON object).
inline QByteArray Release(const QByteArray& id, const QByteArray& title, const QByteArray& date,
                          const QByteArray& country, const QByteArray& credit,
                          const QList<QByteArray>& media) {
    QByteArray list;
    for (const QByteArray& medium : media) list += (list.isEmpty() ? "" : ",") + medium;
    return "{\"id\":\"" + id + "\",\"title\":\"" + title +
           "\",\"status\":\"Official\",\"date\":\"" + date + "\",\"country\":\"" + country +
           "\",\"artist-credit\":" + credit + ",\"media\":[" + list + "]}";
}

inline QByteArray Medium(int position, const QByteArray& discId, const QByteArray& tracks) {
    return "{\"position\":" + QByteArray::number(position) +
           ",\"format\":\"CD\",\"discs\":[{\"id\":\"" + discId + "\",\"sectors\":25650}]," +
           "\"tracks\":" + tracks + "}";
}

inline QByteArray Releases(const QList<QByteArray>& releases) {
    QByteArray list;
    for (const QByteArray& release : releases) list += (list.isEmpty() ? "" : ",") + release;
    return "{\"release-count\":" + QByteArray::number(releases.size()) + ",\"releases\":[" + list +
           "]}";
}

inline QByteArray Credit(const QByteArray& name) {
    return "[{\"name\":\"" + name + "\",\"joinphrase\":\"\",\"artist\":{\"name\":\"" + name +
           "\"}}]";
}

// One CDDB server answer, lines ended by CR LF.
inline QByteArray Cddb(const QList<QByteArray>& lines) {
    QByteArray text;
    for (const QByteArray& line : lines) text += line + "\r\n";
    return text;
}

}  // namespace lookupanswers
