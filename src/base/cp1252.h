// Windows-1252, the single-byte code page of every text file the program reads or writes.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace cp1252
{

QString decode(QByteArrayView bytes);

// Characters outside the code page are written as "?", as the old runtime does.
QByteArray encode(QStringView text);

// The code of one character (0 when it has none), and the character of a code: the key
// codes of the keystroke filter are code-page codes.
int code(QChar c);
QChar character(int code);

// The lines joined, each ended by CR LF, in the code page.
QByteArray encodeLines(const QStringList& lines);

} // namespace cp1252
