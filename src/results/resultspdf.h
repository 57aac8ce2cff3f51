// The printed results: the report drawn on A4 pages by Qt's own PDF writer, each page headed
// by the race name, the date and its number.
#pragma once

#include "results/core/resultsreport.h"

#include <QByteArray>

namespace resultspdf
{

// The PDF file of the report.
QByteArray render(const resultsreport::Report& report);

} // namespace resultspdf
