#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "disc/discmatch.h"

// Answers of a CDDB server (protocol level 6, over HTTP) to "cddb query" and "cddb read".

struct CddbEntryName {
    QString genre;
    QString discId;
    // "Artist / Title" as the server lists it.
    QString title;
};

enum class CddbQueryResult { Found, NoMatch, Refused };

// 200 names one entry, 210 and 211 a list of them, 202 none. Any other answer is Refused, with
// the server's own words in problem.
CddbQueryResult ReadCddbQueryAnswer(const QByteArray& answer, QList<CddbEntryName>& entries,
                                    QString& problem);

// A "210" answer with an xmcd entry: DTITLE "Artist / Title", DYEAR, TTITLEn, each possibly
// split over several lines. Text of older entries may be ISO-8859-1: UTF-8 is taken where it
// is valid. False, with the reason, for any other answer.
bool ReadCddbEntry(const QByteArray& answer, const CddbEntryName& name, DiscMatch& match,
                   QString& problem);
