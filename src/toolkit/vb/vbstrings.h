#pragma once

// The string constants and routines of Visual Basic that the program's texts are built with.

#include <QString>

// The line ends: the catalogue's memos and most boxes use CR LF.
inline const QString vbCrLf = QStringLiteral("\r\n");
inline const QString vbCr = QStringLiteral("\r");

// Trim: blanks (code 32) off both ends, and nothing else.
QString Trim(const QString& text);
