#pragma once

#include <QString>
#include <QtGlobal>

// Text turned into numbers as Visual Basic turns it: the conversions raise error 13 (type
// mismatch) for text that is no number and error 6 (overflow) outside the target's range.

// The number a text stands for: blanks around it, a sign, decimals, an exponent, or a
// hexadecimal "&H" literal. Error 13 for anything else, the empty text included.
double VbNumber(const QString& text);
// CLng of a number: rounds to even and raises error 6 outside the signed 32-bit range.
qint32 CLng(double value);
// CInt, CLng and CByte of a text.
int CIntText(const QString& text);
qint32 CLngText(const QString& text);
int CByteText(const QString& text);
// Val: the number at the start of the text, 0 when there is none; never fails.
double Val(const QString& text);
// The value of the hexadecimal literal "&H" + digits as a 32-bit signed number, so that
// "FFFFFFFF" is -1. Error 13 for a text that is no hexadecimal number, 6 for more than 32 bits.
qint32 HexLiteral(const QString& digits);
