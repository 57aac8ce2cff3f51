// The results lines of List1 and Combo1, built and taken apart by character position:
// rank in 1-4, a dash in 5, the bib in 6-9, then "- ", the time, " - " and the difference.
#pragma once

#include "chrono/core/timevalue.h"

#include <QString>
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

// The List1 index of the line, from the rank in its first 4 characters: rank minus 1. It may
// lie outside the list (a rank of 0, a rank past the last line); the caller checks.
int lineIndexOfRank(QStringView line);

// The bib in characters 6-9 of a List2 line, written without sign blank ("0" when blank).
QString bibOfStartLine(QStringView list2Line);

} // namespace resultline
