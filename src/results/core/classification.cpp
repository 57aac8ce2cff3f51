#include "classification.h"

#include "results/core/resultline.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace classification
{

namespace
{

// The start of each bib of the start order, the first line of a bib counting.
QHash<int, qint64> startOrderTimes(const QStringList& list2)
{
    QHash<int, qint64> starts;
    for (const QString& line : list2) {
        const int bib = resultline::startBibOf(line);
        const std::optional<qint64> start =
            entrants::readClockTime(resultline::startTimeField(line));
        if (bib > 0 && start && !starts.contains(bib))
            starts.insert(bib, *start);
    }
    return starts;
}

// The width of the format's last digit, from a time's length: a second, a hundredth, a
// thousandth.
qint64 unitOf(QStringView time)
{
    return time.size() == 8 ? 1000 : time.size() == 11 ? 10 : 1;
}

// The differences to the first line the lines carry, in milliseconds, when every line with a
// time has one that fits it: the time less the first line's, or one unit of the format less
// (the clock's difference, cut, may lose a unit that the two cut times do not). Empty when a
// line's difference is missing, unreadable or does not fit.
QList<qint64> screenDifferences(const QStringList& list1)
{
    QList<qint64> differences;
    if (list1.isEmpty())
        return differences;
    const std::optional<QString> firstText = resultline::list1Time(list1.first());
    const std::optional<qint64> first = firstText ? lineTimeMs(*firstText) : std::nullopt;
    if (!first)
        return differences;
    differences.reserve(list1.size());
    for (const QString& line : list1) {
        const std::optional<QString> time = resultline::list1Time(line);
        const std::optional<qint64> ms = time ? lineTimeMs(*time) : std::nullopt;
        if (!ms) {
            differences << 0; // a line without a time has no gap
            continue;
        }
        // The difference drops the hours' first digit: "0:00:01" is 00:00:01.
        const std::optional<QString> text = resultline::list1Difference(line);
        const std::optional<qint64> difference =
            text ? lineTimeMs(QString(u'0' + *text)) : std::nullopt;
        const qint64 byTimes = *ms - *first;
        if (!difference || (*difference != byTimes && *difference != byTimes - unitOf(*time)))
            return {};
        differences << *difference;
    }
    return differences;
}

// The unclassified in their order: by category, by status, by bib.
void sortUnclassified(QList<Row>& rows, const QList<entrants::Entrant>& entrants,
                      const QStringList& categories)
{
    const auto category = [&](const Row& r) {
        const qsizetype c = r.entrant >= 0 ? categories.indexOf(entrants[r.entrant].categoria) : -1;
        return c < 0 ? categories.size() : c;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& a, const Row& b) {
        const auto ka = std::tuple(category(a), runnerstatus::listOrder(a.kind), a.bib);
        const auto kb = std::tuple(category(b), runnerstatus::listOrder(b.kind), b.bib);
        return ka < kb;
    });
}

bool ranksBefore(const Row& a, const Row& b)
{
    // Lines without a time (the bibs-only capture) keep the order they arrived in.
    if (a.timeMs.has_value() != b.timeMs.has_value())
        return a.timeMs.has_value();
    if (a.timeMs && *a.timeMs != *b.timeMs)
        return *a.timeMs < *b.timeMs;
    return a.arrival < b.arrival;
}

} // namespace

qint64 published(qint64 ms, Precision precision)
{
    const qint64 unit = precision == Precision::Tenth         ? 100
                        : precision == Precision::WholeSecond ? 1000
                                                              : 1;
    return ms <= 0 ? ms : (ms + unit - 1) / unit * unit;
}

std::optional<qint64> lineTimeMs(QStringView time)
{
    const qsizetype n = time.size();
    if (!(n == 8 || n == 11 || n == 12) || time[2] != u':' || time[5] != u':' ||
        (n > 8 && time[8] != u':'))
        return std::nullopt;
    qint64 fields[4] = {};
    const qsizetype starts[4] = {0, 3, 6, 9};
    const qsizetype lengths[4] = {2, 2, 2, n > 8 ? n - 9 : 0};
    for (int f = 0; f < 4; ++f)
        for (qsizetype i = starts[f]; i < starts[f] + lengths[f]; ++i) {
            const char16_t c = time[i].unicode();
            if (c < u'0' || c > u'9')
                return std::nullopt;
            fields[f] = fields[f] * 10 + (c - u'0');
        }
    const qint64 fractionMs = n == 11 ? fields[3] * 10 : fields[3];
    return ((fields[0] * 60 + fields[1]) * 60 + fields[2]) * 1000 + fractionMs;
}

Results classify(const QStringList& list1, const QList<entrants::Entrant>& entrants,
                 const QStringList& list2, const Options& options)
{
    const bool rounded = options.precision != Precision::AsTaken;
    Results results;
    results.withEntrants = !entrants.isEmpty();
    QHash<int, int> entrantOfBib;
    QHash<QString, int> categoryIndex;
    for (qsizetype i = 0; i < entrants.size(); ++i) {
        const entrants::Entrant& e = entrants[i];
        entrantOfBib.insert(e.bib, static_cast<int>(i));
        if (e.salidaMs)
            results.timeTrial = true;
        if (!e.categoria.isEmpty() && !categoryIndex.contains(e.categoria)) {
            categoryIndex.insert(e.categoria, static_cast<int>(results.categories.size()));
            results.categories << e.categoria;
        }
    }
    const QHash<int, qint64> startOrder = startOrderTimes(list2);
    results.timeTrial = results.timeTrial || !list2.isEmpty();

    QList<Row> ranked, beforeStart, noStart, unidentified, repeated;
    QSet<int> counted;
    for (qsizetype i = 0; i < list1.size(); ++i) {
        Row row;
        row.arrival = static_cast<int>(i + 1);
        row.bib = static_cast<int>(resultline::bibOf(list1[i]));
        row.entrant = entrantOfBib.value(row.bib, -1);
        if (const std::optional<QString> time = resultline::list1Time(list1[i]))
            row.finishMs = lineTimeMs(*time);

        if (row.bib <= 0 || (results.withEntrants && row.entrant < 0)) {
            row.status = Status::Unidentified;
            unidentified << row;
            continue;
        }
        if (counted.contains(row.bib)) {
            row.status = Status::Repeated;
            repeated << row;
            continue;
        }
        counted.insert(row.bib);
        // Taken out by the timekeeper: listed with the entrants not classified.
        row.kind = runnerstatus::of(options.marks, row.bib, true);
        if (row.kind != runnerstatus::Kind::Classified) {
            results.unclassified << row;
            continue;
        }
        if (results.timeTrial) {
            if (row.entrant >= 0 && entrants[row.entrant].salidaMs)
                row.startMs = entrants[row.entrant].salidaMs;
            else if (startOrder.contains(row.bib))
                row.startMs = startOrder.value(row.bib);
            if (!row.startMs) {
                row.status = Status::NoStart;
                noStart << row;
                continue;
            }
            if (row.finishMs && *row.finishMs < *row.startMs) {
                row.status = Status::BeforeStart;
                beforeStart << row;
                continue;
            }
            if (row.finishMs)
                row.timeMs = *row.finishMs - *row.startMs;
        } else {
            row.timeMs = row.finishMs;
        }
        ranked << row;
    }
    // The entrants without a finish.
    for (qsizetype i = 0; i < entrants.size(); ++i) {
        if (counted.contains(entrants[i].bib))
            continue;
        Row row;
        row.bib = entrants[i].bib;
        row.entrant = static_cast<int>(i);
        row.kind = runnerstatus::of(options.marks, row.bib, false);
        if (row.kind == runnerstatus::Kind::Classified)
            row.kind = runnerstatus::Kind::DidNotStart; // classified without a finish: no time
        results.unclassified << row;
    }
    sortUnclassified(results.unclassified, entrants, results.categories);

    std::stable_sort(ranked.begin(), ranked.end(), ranksBefore);
    // Ranked on the time as taken, published rounded: the same rounded times are neighbours.
    if (rounded)
        for (Row& row : ranked)
            if (row.timeMs)
                row.timeMs = published(*row.timeMs, options.precision);
    // What a gap is measured on: the screen's difference where the lines carry it, else the
    // time that ranks.
    const QList<qint64> screen =
        results.timeTrial || rounded ? QList<qint64>() : screenDifferences(list1);
    const auto gapBase = [&screen](const Row& row) -> std::optional<qint64> {
        if (!row.timeMs || screen.isEmpty())
            return row.timeMs;
        return screen[row.arrival - 1];
    };
    const std::optional<qint64> leader = ranked.isEmpty() ? std::nullopt : gapBase(ranked.first());
    QList<int> categoryCount(results.categories.size());
    QList<std::optional<qint64>> categoryLeader(results.categories.size());
    QList<std::optional<qint64>> categoryLast(results.categories.size());
    QList<int> categoryLastPosition(results.categories.size());
    for (qsizetype i = 0; i < ranked.size(); ++i) {
        Row& row = ranked[i];
        // Rounded times that are the same share the place.
        const bool tied = rounded && i > 0 && row.timeMs && ranked[i - 1].timeMs == row.timeMs;
        row.position = tied ? ranked[i - 1].position : static_cast<int>(i + 1);
        const std::optional<qint64> base = gapBase(row);
        if (base && leader)
            row.gapMs = *base - *leader;
        if (row.entrant < 0)
            continue;
        const int c = categoryIndex.value(entrants[row.entrant].categoria, -1);
        if (c < 0)
            continue;
        ++categoryCount[c];
        const bool categoryTied = rounded && row.timeMs && categoryLast[c] == row.timeMs;
        row.categoryPosition = categoryTied ? categoryLastPosition[c] : categoryCount[c];
        categoryLast[c] = row.timeMs;
        categoryLastPosition[c] = row.categoryPosition;
        if (categoryCount[c] == 1)
            categoryLeader[c] = base;
        if (base && categoryLeader[c])
            row.categoryGapMs = *base - *categoryLeader[c];
    }
    results.rows = ranked + beforeStart + noStart + unidentified + repeated;
    return results;
}

} // namespace classification
