// Text rules of the old file formats and of the results lines: the leading-number reading
// of Val, the sign blank of Str, Left/Mid/Right that never fail on short texts, and the
// right-aligned four-character fields. Everything that reads or builds a line uses these.
#pragma once

#include <QString>
#include <QStringView>

namespace basic
{

// Leading number of a text: blanks, tabs and line feeds are ignored anywhere, then an
// optional sign, digits, an optional point with digits and an optional exponent (E or D);
// &H and &O prefixes read hexadecimal and octal. A text that starts with no number gives 0.
double val(QStringView text);

// Whether the whole text (blanks around it allowed) is one number, as a numeric field of a
// state file must be.
bool isNumber(QStringView text, double* value = nullptr);

// Decimal form of a number: shortest text with at most 15 significant digits, exponent form
// from 1E15 up (8.64E+16), no leading zero before the point (.5), no sign blank.
QString digits(double value);

// Str: the digits with a leading blank for a value that is not negative.
QString str(double value);

// Left, Mid (1-based start) and Right: a count past either end is clamped, never an error.
QString left(QStringView text, qsizetype count);
QString mid(QStringView text, qsizetype start, qsizetype count = -1);
QString right(QStringView text, qsizetype count);

// Four blanks put in front, the last four characters kept: "7" gives "   7", "12345" "2345".
QString rightAlign4(QStringView text);

// A number written without its sign blank and right-aligned in four characters.
QString field4(double value);

// The fitting of a fixed-length text: longer values are cut, shorter ones padded with blanks.
QString fitFixed(QStringView text, qsizetype length);

} // namespace basic
