// Small text helpers shared by the classifications and their spreadsheets: a name as a key that
// spelling details do not split, and the spreadsheet text of a table.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace plaintext
{

// Lower case, accents dropped, blanks trimmed and runs of blanks made one space:
// "  José   GARCÍA " and "jose garcia" give the same key.
QString folded(const QString& text);

// UTF-8 with its mark, ";" between fields, CR LF after every row; a field holding ";", a quote
// or a line break, or with blanks at either end, is quoted, its quotes doubled.
QByteArray csv(const QList<QStringList>& rows);
// One such row appended to the text.
void appendCsvRow(QString& text, const QStringList& cells);

} // namespace plaintext
