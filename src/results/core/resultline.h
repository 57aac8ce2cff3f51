// The lines of the lists, built and taken apart here and nowhere else, by character position:
// - List1: rank in 1-4, a dash in 5, the bib in 6-9, then "- ", the time, " - " and the
//   difference ("   3-  57- 00:12:34:567 - 0:00:05:123"); the bibs-only form stops after the bib.
// - Combo1: rank in 1-4, then "- ", the time, " - " and the difference.
// - List2 (the start order): record number in 1-4, a dash in 5, the bib in 6-9, " - " and the
//   start time ("   1-  57 - 0:30:00").
// Positions in the comments are 1-based, as the lines were always described.
#pragma once

#include "chrono/core/timevalue.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace resultline
{

// Rank from the caption of Label2 and bib from the text of Text1: the leading number, written
// without sign blank and right-aligned in 4 ("" gives "   0", "12345" "2345", "1.5" " 1.5").
QString rankField(QStringView label2Caption);
QString bibField(QStringView text1);

// Where a time or difference goes decides its cut in "Milesimas": the List1 line keeps the
// whole text, the Combo1 line takes the first 12 (time) or 11 (difference) characters. In the
// other formats both take the format's width. The first and last finisher labels are cut as
// List1, the last difference label as Combo1.
enum class Target { List1, Combo1 };

// A text cut to the width of the format; a shorter text is used as it is.
QString cutTime(QStringView time, TimeFormat format, Target target);
QString cutDifference(QStringView difference, TimeFormat format, Target target);

// The three line forms, from fields already made: R-B- T - D, R- T - D and R-B.
QString fullLine(QStringView rank, QStringView bib, QStringView time, QStringView difference);
QString comboLine(QStringView rank, QStringView time, QStringView difference);
QString bibLine(QStringView rank, QStringView bib);

// The line with its bib replaced by the typed one, right-aligned in 4 (a longer bib keeps its
// last 4); the rest from character 10 on is kept as it is. A text shorter than 9 characters
// is no results line: nothing to rewrite.
std::optional<QString> rewriteBib(QStringView line, QStringView typedBib);

// The rank in characters 1-4 as Val reads it, a fraction cut toward zero; a reading beyond
// int (a damaged field such as "1E99") gives 0.
int rankOf(QStringView line);

// Characters 1-4 without their blanks, as a message names the line.
QString rankText(QStringView line);

// The line with its rank field (characters 1-4) made `rank`, right-aligned in 4 (a longer
// number keeps its last 4); the rest from character 5 on is kept as it is.
QString withRank(QStringView line, int rank);

// The List1 index of the line, from the rank in its first 4 characters: rank minus 1. It may
// lie outside the list (a rank of 0, a rank past the last line); the caller checks.
int lineIndexOfRank(QStringView line);

// The bib of a List1 line (characters 6-9) as Val reads it, 0 when blank or not a number.
double bibOf(QStringView list1Line);

// Characters 6-9 exactly as they stand, as the exports write the bib.
QString bibText(QStringView list1Line);

// The time of a List1 line (from character 12) and of a Combo1 line (from character 7), up to
// the " - " that follows it; none when no " - " follows (the bibs-only form, a short line).
std::optional<QString> list1Time(QStringView line);
std::optional<QString> combo1Time(QStringView line);

// The difference: everything after that " - "; none when the line has no time.
std::optional<QString> list1Difference(QStringView line);
std::optional<QString> combo1Difference(QStringView line);

// `width` characters from character 12 of a List1 line and from character 7 of a Combo1 line,
// as the exports read the time: fewer when the line is shorter, none past its end.
QString list1TimeText(QStringView line, qsizetype width);
QString combo1TimeText(QStringView line, qsizetype width);

// The line with its difference replaced; a line without a time is returned as it is.
QString withList1Difference(QStringView line, QStringView difference);
QString withCombo1Difference(QStringView line, QStringView difference);

// The List2 line of a start-order record: the record number and the bib written without sign
// blank and right-aligned in 4, and the last 7 characters of the start time.
QString startLine(qint64 recordNumber, qint16 bib, QStringView startTime);

// The bib in characters 6-9 of a List2 line as Val reads it: as a number, a fraction cut
// toward zero (0 when blank, not a number or beyond int); as the text Text1 takes, the reading
// written without sign blank ("0" when blank, "1.5" as it is).
int startBibOf(QStringView list2Line);
QString bibOfStartLine(QStringView list2Line);

// The start time of a List2 line: its last 7 characters, as the countdown reads it, and
// everything from character 13 on, as the classification reads it.
QString startTimeText(QStringView list2Line);
QStringView startTimeField(QStringView list2Line);

// The bibs of every List2 line.
QSet<int> startBibs(const QStringList& list2);

} // namespace resultline
