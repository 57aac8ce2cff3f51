// The classification as people read it: tables of text for the printed page and the web page,
// and one row a finish for spreadsheets. Times read h:mm:ss with the race's fraction after a
// comma ("1:02:03,450"); a gap is the same with a plus sign.
#pragma once

#include "results/core/classification.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace resultsreport
{

// How a column is set: numbers and times to the right, texts to the left; the wide texts
// (names, clubs) share what the others leave of the width.
enum class Column { Number, Text, WideText };

// Where a column goes on a phone: on the row's first line (place, bib, name, time), or on a
// smaller second line below it, alone or after its header ("Salida 0:30:00").
enum class Place { Main, Detail, NamedDetail };

struct Table {
    QString title;
    QString label; // in the web page's index; empty for a table the index leaves out
    QStringList header;
    QList<QStringList> rows;
    QList<Column> columns;
    QList<Place> places;
};

// A count for the first page: the classified, and each kind of finish kept apart, with the
// table it counts.
struct Summary {
    QString text;
    int table = 0;
};

struct Report {
    QString raceName;
    QDate date;
    QList<Table> tables;
    QList<Summary> summary;
};

// A time in milliseconds with `fractionDigits` (0, 1, 2 or 3) digits after the comma, cut (never
// rounded) to them.
QString clockText(qint64 ms, int fractionDigits);

// The general classification, one per category when the entrants have categories, then the
// finishes that are not ranked, each kind in a table of its own: those before the runner's
// start first, then those without a start, the unidentified and the repeats.
// The entrants not classified follow, by category with their status, and their counts a
// status go on the first page.
Report report(const classification::Results& results, const QList<entrants::Entrant>& entrants,
              int fractionDigits, const QString& raceName, const QDate& date,
              const runnerstatus::Marks& marks = {});

// One self-contained HTML5 page, UTF-8, made for a phone first: an index of the
// classifications at the top, and on a narrow screen each row on two lines, place, bib, name
// and time on the first. On a wide screen and on paper, plain tables.
QByteArray html(const Report& report);

// UTF-8 with its mark, ";" between fields, CR LF after every row: a header, then one row a
// finish in the order of the classification.
QByteArray csv(const classification::Results& results, const QList<entrants::Entrant>& entrants,
               int fractionDigits, const runnerstatus::Marks& marks = {});

// The fraction digits of a time format (Segundos, Centesimas, Milesimas), or of the
// precision the times are published to when it is not as taken.
int fractionDigitsOf(int format, classification::Precision precision = {});

} // namespace resultsreport
