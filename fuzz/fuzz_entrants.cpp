// The entrants' CSV reader on any bytes, and the results made from what it loads: no crash,
// every loaded bib in range and loaded once, the skipped rows in file order.
#include "results/core/classification.h"
#include "results/core/entrants.h"
#include "results/core/resultsreport.h"

#include <QSet>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto bytes =
        QByteArrayView(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const entrants::Loaded loaded = entrants::read(bytes);
    QSet<int> bibs;
    for (const entrants::Entrant& e : loaded.entrants) {
        if (e.bib < 1 || e.bib > entrants::maxBib || bibs.contains(e.bib))
            std::abort();
        bibs.insert(e.bib);
    }
    for (qsizetype i = 1; i < loaded.skippedLines.size(); ++i)
        if (loaded.skippedLines[i] <= loaded.skippedLines[i - 1])
            std::abort();

    const QStringList list1{QStringLiteral("   1-   1- 00:10:00:000 - 0:00:00:000"),
                            QStringLiteral("   2-   0- 00:10:01:500 - 0:00:01:500"),
                            QStringLiteral("   3-   1- 00:10:02:000 - 0:00:02:000")};
    const classification::Results results =
        classification::classify(list1, loaded.entrants, {QStringLiteral("   1-   1 - 0:01:00")});
    if (results.rows.size() != list1.size())
        std::abort();
    resultsreport::html(resultsreport::report(results, loaded.entrants, 3, {}, {}));
    resultsreport::csv(results, loaded.entrants, 3);
    return 0;
}
