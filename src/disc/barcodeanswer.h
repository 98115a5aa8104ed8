#pragma once

// The MusicBrainz answers of a look-up by barcode (JSON): the releases a search for the
// barcode found, and one release with its media and tracks.

#include <QByteArray>
#include <QList>
#include <QString>

#include "disc/discmatch.h"

// The digits of what the user typed or scanned: spaces and dashes dropped. Empty when anything
// else is left.
QString BarcodeDigits(const QString& typed);
// True when digits are a UPC-A (12) or EAN-13 (13) whose check digit is right; false for a
// wrong check digit. Other lengths have no check of theirs and count as right.
bool BarcodeCheckDigitHolds(const QString& digits);

// Every disc of every release found: one match a medium, the tracks' names still unknown.
// False, with the reason, for an answer that is not a search's JSON.
bool ReadBarcodeSearchAnswer(const QByteArray& json, QList<DiscMatch>& matches, QString& problem);
// Fills match (a row of the search) with the names of its disc's tracks from the release's
// own answer. False, with the reason, when the answer is not the release's or lacks the disc.
bool ReadBarcodeReleaseAnswer(const QByteArray& json, DiscMatch& match, QString& problem);
