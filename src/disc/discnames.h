#pragma once

#include <QByteArray>
#include <QString>

// Names and CD-Text from discs carry no declared encoding: valid UTF-8 is taken as such, and
// anything else as Windows-1252, the code page of the discs' Windows origin.
QString DecodeDiscText(const QByteArray& bytes);
