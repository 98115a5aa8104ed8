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

// 200 names one entry, 210 and 211 a list of them ended by a "." line, 202 none. Any other
// answer, and a list cut off before its end, is Refused, with the reason in problem.
CddbQueryResult ReadCddbQueryAnswer(const QByteArray& answer, QList<CddbEntryName>& entries,
                                    QString& problem);

// A "210" answer with an xmcd entry ended by a "." line: DTITLE "Artist / Title", DYEAR (or
// "YEAR:" in EXTD when DYEAR is empty), TTITLEn, each possibly split over several lines. Text
// of older entries may be ISO-8859-1: UTF-8 is taken where it is valid. False, with the
// reason, for any other answer and for an entry cut off before its end.
bool ReadCddbEntry(const QByteArray& answer, const CddbEntryName& name, DiscMatch& match,
                   QString& problem);
