#include "raceresults.h"

#include "results/core/plaintext.h"

#include <QHash>

namespace raceresults
{

namespace
{

using classification::Row;
using classification::Status;

QList<Incident> incidentsOf(const classification::Results& results,
                            const QList<entrants::Entrant>& entrants)
{
    QList<Incident> out;
    QHash<int, int> positionOfBib;
    for (const Row& row : results.rows)
        if (row.status == Status::Ranked)
            positionOfBib.insert(row.bib, row.position);
    for (const Row& row : results.rows) {
        if (row.status == Status::Repeated) {
            const int position = positionOfBib.value(row.bib);
            out << Incident{row.bib, QStringLiteral("Llegada repetida"),
                            position > 0
                                ? QStringLiteral("Llegada %1; ya clasificado en el puesto %2")
                                      .arg(row.arrival)
                                      .arg(position)
                                : QStringLiteral("Llegada %1").arg(row.arrival)};
        } else if (row.status == Status::Unidentified) {
            out << Incident{row.bib,
                            row.bib > 0 ? QStringLiteral("Dorsal no inscrito")
                                        : QStringLiteral("Llegada sin dorsal"),
                            QStringLiteral("Llegada %1").arg(row.arrival)};
        }
    }
    // An entrant without a category, when the race has categories.
    if (!results.categories.isEmpty())
        for (const entrants::Entrant& e : entrants)
            if (e.categoria.trimmed().isEmpty())
                out << Incident{e.bib, QStringLiteral("Sin categoría"), e.fullName()};
    // A runner of a team whose club is not the one most of the team's runners come from.
    QHash<QString, QHash<QString, int>> clubsOfTeam;
    for (const entrants::Entrant& e : entrants)
        if (!e.equipo.trimmed().isEmpty() && !e.club.trimmed().isEmpty())
            ++clubsOfTeam[plaintext::folded(e.equipo)][plaintext::folded(e.club)];
    for (const entrants::Entrant& e : entrants) {
        if (e.equipo.trimmed().isEmpty() || e.club.trimmed().isEmpty())
            continue;
        const QHash<QString, int>& clubs = clubsOfTeam[plaintext::folded(e.equipo)];
        QString main;
        int most = 0;
        for (auto it = clubs.cbegin(); it != clubs.cend(); ++it)
            if (it.value() > most || (it.value() == most && it.key() < main)) {
                main = it.key();
                most = it.value();
            }
        if (clubs.size() > 1 && plaintext::folded(e.club) != main)
            out << Incident{
                e.bib, QStringLiteral("Corredor de otro club en un equipo"),
                QStringLiteral("%1: club %2, equipo %3").arg(e.fullName(), e.club, e.equipo)};
    }
    return out;
}

QList<teams::Runner> teamRunners(const classification::Results& results,
                                 const QList<entrants::Entrant>& entrants)
{
    QList<teams::Runner> runners;
    for (const Row& row : results.rows) {
        if (row.status != Status::Ranked || row.entrant < 0 || !row.timeMs)
            continue;
        const entrants::Entrant& e = entrants[row.entrant];
        runners << teams::Runner{row.bib, e.fullName(), e.team(),
                                 e.sexo,  row.position, *row.timeMs};
    }
    return runners;
}

} // namespace

Settings load(const QSettings& s)
{
    const auto number = [&s](const char* key, int byDefault, int low, int high) {
        bool ok = false;
        const int v =
            s.value(QStringLiteral("resultados/%1").arg(QLatin1String(key)), byDefault).toInt(&ok);
        return ok && v >= low && v <= high ? v : byDefault;
    };
    Settings kept;
    kept.precision = classification::Precision(number("precision", 0, 0, 2));
    kept.awards.perCategory = number("premiosCategoria", 3, 0, 20);
    kept.awards.overall = number("premiosGeneral", 3, 0, 20);
    kept.awards.overallExcluded =
        s.value(QStringLiteral("resultados/generalNoRepite"), false).toBool();
    if (const int scorers = number("equipoPuntuan", 0, 0, 50); scorers > 0)
        kept.teams = teams::Rules{scorers,
                                  number("equipoPor", 0, 0, 1) == 1 ? teams::Rules::Score::Points
                                                                    : teams::Rules::Score::Time,
                                  s.value(QStringLiteral("resultados/equipoSexo"), false).toBool()};
    return kept;
}

void save(QSettings& s, const Settings& kept)
{
    s.setValue(QStringLiteral("resultados/precision"), int(kept.precision));
    s.setValue(QStringLiteral("resultados/premiosCategoria"), kept.awards.perCategory);
    s.setValue(QStringLiteral("resultados/premiosGeneral"), kept.awards.overall);
    s.setValue(QStringLiteral("resultados/generalNoRepite"), kept.awards.overallExcluded);
    s.setValue(QStringLiteral("resultados/equipoPuntuan"), kept.teams ? kept.teams->scorers : 0);
    s.setValue(QStringLiteral("resultados/equipoPor"),
               kept.teams && kept.teams->score == teams::Rules::Score::Points ? 1 : 0);
    s.setValue(QStringLiteral("resultados/equipoSexo"), kept.teams && kept.teams->bySex);
}

QString folderName(const QDate& date, const QString& raceName)
{
    QString name;
    for (const QChar c : raceName.simplified()) {
        if (QStringLiteral("\\/:*?\"<>|").contains(c) || c.unicode() < 32)
            name += u'-';
        else
            name += c;
    }
    // Windows takes no name that ends in a dot or a space.
    while (name.endsWith(u'.') || name.endsWith(u' '))
        name.chop(1);
    name = name.left(60).trimmed();
    const QString day = date.toString(QStringLiteral("yyyy-MM-dd"));
    return name.isEmpty() ? day : day + u' ' + name;
}

Computed compute(const Input& input, const Settings& settings)
{
    Computed c;
    c.results = classification::classify(input.list1, input.entrants, input.list2,
                                         {input.marks, settings.precision});
    c.fractionDigits = resultsreport::fractionDigitsOf(input.format, settings.precision);
    if (!input.entrants.isEmpty())
        c.podiums = awards::podiums(c.results, input.entrants, settings.awards);
    if (settings.teams)
        c.teams = teams::score(teamRunners(c.results, input.entrants), *settings.teams);
    c.incidents = incidentsOf(c.results, input.entrants);
    return c;
}

resultsreport::Report results(const Computed& computed, const Input& input)
{
    resultsreport::Report report =
        resultsreport::report(computed.results, input.entrants, computed.fractionDigits, input.name,
                              input.date, input.marks);
    if (computed.incidents.isEmpty())
        return report;
    using resultsreport::Column;
    using resultsreport::Place;
    resultsreport::Table t{
        QStringLiteral("Incidencias"),
        QStringLiteral("Incidencias"),
        {QStringLiteral("Dorsal"), QStringLiteral("Incidencia"), QStringLiteral("Detalle")},
        {},
        {Column::Number, Column::Text, Column::WideText},
        {Place::Main, Place::Main, Place::Detail}};
    for (const Incident& i : computed.incidents)
        t.rows << QStringList{QString::number(i.bib), i.kind, i.detail};
    report.summary << resultsreport::Summary{
        QStringLiteral("Incidencias: %1").arg(computed.incidents.size()),
        static_cast<int>(report.tables.size())};
    report.tables << t;
    return report;
}

resultsreport::Report awardsPage(const Computed& computed, const Input& input)
{
    return {
        input.name.isEmpty() ? QStringLiteral("Premios")
                             : QStringLiteral("%1 · Premios").arg(input.name),
        input.date,
        awards::tables(computed.podiums, computed.results, input.entrants, computed.fractionDigits),
        {}};
}

resultsreport::Report teamsPage(const Computed& computed, const Input& input,
                                const Settings& settings)
{
    if (!settings.teams)
        return {};
    return {input.name.isEmpty() ? QStringLiteral("Equipos")
                                 : QStringLiteral("%1 · Equipos").arg(input.name),
            input.date,
            teams::tables(computed.teams, *settings.teams, computed.fractionDigits),
            {}};
}

} // namespace raceresults
