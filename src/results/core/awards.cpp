#include "awards.h"

#include "results/core/sexes.h"

#include <QSet>

namespace awards
{

namespace
{

using classification::Row;

// The first `n` places among `rows` (ranked, in classification order): a runner's place is one
// more than the runners ahead of him, so that a shared position stays shared.
QList<Winner> firstOf(const QList<int>& rows, const QList<Row>& all, int n)
{
    QList<Winner> winners;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        int ahead = 0;
        while (ahead < i && all[rows[ahead]].position < all[rows[i]].position)
            ++ahead;
        const int place = ahead + 1;
        if (place > n)
            break;
        winners << Winner{place, rows[i]};
    }
    return winners;
}

} // namespace

QList<Podium> podiums(const classification::Results& results,
                      const QList<entrants::Entrant>& entrants, const Rules& rules)
{
    QList<Podium> out;
    QList<int> men, women;
    QList<QList<int>> byCategory(results.categories.size());
    for (qsizetype i = 0; i < results.rows.size(); ++i) {
        const Row& row = results.rows[i];
        if (row.status != classification::Status::Ranked || row.entrant < 0)
            continue;
        const entrants::Entrant& e = entrants[row.entrant];
        const sexes::Sex sex = sexes::of(e.sexo);
        if (sex == sexes::Sex::Male)
            men << int(i);
        else if (sex == sexes::Sex::Female)
            women << int(i);
        const qsizetype c = results.categories.indexOf(e.categoria);
        if (c >= 0)
            byCategory[c] << int(i);
    }
    QSet<int> overallWinners;
    if (rules.overall > 0) {
        for (const auto& [rows, title] : {std::pair{men, QStringLiteral("General masculina")},
                                          std::pair{women, QStringLiteral("General femenina")}}) {
            Podium p{title, firstOf(rows, results.rows, rules.overall)};
            for (const Winner& w : std::as_const(p.winners))
                overallWinners.insert(w.row);
            if (!p.winners.isEmpty())
                out << p;
        }
    }
    for (qsizetype c = 0; c < results.categories.size(); ++c) {
        QList<int> rows = byCategory[c];
        if (rules.overallExcluded)
            rows.removeIf([&](int r) { return overallWinners.contains(r); });
        Podium p{QStringLiteral("Categoría %1").arg(results.categories[c]),
                 firstOf(rows, results.rows, rules.perCategory)};
        if (!p.winners.isEmpty())
            out << p;
    }
    return out;
}

QList<resultsreport::Table> tables(const QList<Podium>& podiums,
                                   const classification::Results& results,
                                   const QList<entrants::Entrant>& entrants, int fractionDigits)
{
    using resultsreport::Column;
    using resultsreport::Place;
    QList<resultsreport::Table> out;
    for (const Podium& p : podiums) {
        resultsreport::Table t{
            p.title,
            p.title,
            {QStringLiteral("Puesto"), QStringLiteral("Dorsal"), QStringLiteral("Nombre"),
             QStringLiteral("Club"), QStringLiteral("Tiempo")},
            {},
            {Column::Number, Column::Number, Column::WideText, Column::WideText, Column::Number},
            {Place::Main, Place::Main, Place::Main, Place::Detail, Place::Main}};
        for (const Winner& w : p.winners) {
            const Row& row = results.rows[w.row];
            const entrants::Entrant& e = entrants[row.entrant];
            t.rows << QStringList{
                QString::number(w.place), QString::number(row.bib), e.fullName(), e.club,
                row.timeMs ? resultsreport::clockText(*row.timeMs, fractionDigits) : QString()};
        }
        out << t;
    }
    return out;
}

} // namespace awards
