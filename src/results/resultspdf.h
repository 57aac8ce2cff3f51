// The printed results: the report drawn on A4 pages by Qt's own PDF writer, each page headed
// by the race name (on as many lines as it takes), the date on a line of its own and the page
// number; the first page counts the classified and each kind of finish kept apart. Columns
// are as wide as their texts need, the names and clubs sharing what is left and going on to
// more lines rather than being cut.
#pragma once

#include "results/core/resultsreport.h"

#include <QByteArray>

namespace resultspdf
{

// The PDF file of the report.
QByteArray render(const resultsreport::Report& report);

} // namespace resultspdf
