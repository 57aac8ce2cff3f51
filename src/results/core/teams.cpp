#include "teams.h"

#include "results/core/plaintext.h"
#include "results/core/sexes.h"

#include <QHash>

#include <algorithm>
#include <tuple>

namespace teams
{

namespace
{

using sexes::Sex;

QString sexName(Sex sex)
{
    return sexes::name(sex);
}

int sexOrder(const QString& name)
{
    return name == sexName(Sex::Female) ? 1 : 0;
}

qint64 total(const Team& team, const Rules& rules)
{
    return rules.score == Rules::Score::Time ? team.totalMs : team.points;
}

int lastPlace(const Team& team)
{
    return team.scorers.isEmpty() ? 0 : team.scorers.last().place;
}

QString runnerName(const Runner& runner)
{
    return runner.name.isEmpty() ? QStringLiteral("Dorsal %1").arg(runner.bib) : runner.name;
}

QString runnerList(const QList<Runner>& runners)
{
    QStringList names;
    for (const Runner& r : runners)
        names << QStringLiteral("%1 (%2)").arg(runnerName(r)).arg(r.place);
    return names.join(QStringLiteral(", "));
}

QString totalText(const Team& team, const Rules& rules, int fractionDigits)
{
    return rules.score == Rules::Score::Time
               ? resultsreport::clockText(team.totalMs, fractionDigits)
               : QString::number(team.points);
}

} // namespace

QString refusal(const Rules& rules)
{
    if (rules.scorers < 1)
        return QStringLiteral("Para clasificar equipos debe puntuar al menos un corredor por "
                              "equipo (ahora %1).")
            .arg(rules.scorers);
    return QString();
}

QList<Team> score(const QList<Runner>& runners, const Rules& rules)
{
    if (!refusal(rules).isEmpty())
        return {};
    QList<Runner> ordered = runners;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const Runner& a, const Runner& b) { return a.place < b.place; });

    // A team is named as its first finisher spells it, the same for both sexes.
    QHash<QString, QString> spelling;
    for (const Runner& runner : ordered) {
        const QString name = runner.team.simplified();
        if (!name.isEmpty() && !spelling.contains(plaintext::folded(name)))
            spelling.insert(plaintext::folded(name), name);
    }
    QList<Team> found;
    QHash<QString, qsizetype> index;
    int sexPlaces[3] = {0, 0, 0};
    for (Runner runner : ordered) {
        Sex sex = Sex::None;
        if (rules.bySex) {
            sex = sexes::of(runner.sexo);
            if (sex == Sex::None)
                continue;
            // Every runner of the sex takes a place, with a team or not.
            runner.place = ++sexPlaces[int(sex)];
        }
        const QString name = runner.team.simplified();
        if (name.isEmpty())
            continue;
        const QString team = plaintext::folded(name);
        const QString key = QString::number(int(sex)) + u'|' + team;
        auto it = index.constFind(key);
        if (it == index.constEnd()) {
            it = index.insert(key, found.size());
            found << Team{spelling[team], sexName(sex), 0, {}, {}, 0, 0, false};
        }
        Team& scored = found[*it];
        if (scored.scorers.size() < rules.scorers) {
            scored.scorers << runner;
            scored.totalMs += runner.timeMs;
            scored.points += runner.place;
        } else {
            scored.others << runner;
        }
    }
    for (Team& team : found)
        team.complete = team.scorers.size() == rules.scorers;

    // By sex, complete teams first, the incomplete by their number of runners; then the
    // total, then the last scorer's place; teams equal on all keep the order they first
    // finished in.
    std::stable_sort(found.begin(), found.end(), [&rules](const Team& a, const Team& b) {
        const auto rank = [&rules](const Team& t) {
            return std::make_tuple(sexOrder(t.sex), !t.complete, -t.scorers.size(), total(t, rules),
                                   lastPlace(t));
        };
        return rank(a) < rank(b);
    });
    // Places count within a sex; a team level with the one before on both keys shares its place.
    int counted = 0;
    for (qsizetype i = 0; i < found.size(); ++i) {
        Team& team = found[i];
        if (i == 0 || found[i - 1].sex != team.sex)
            counted = 0;
        if (!team.complete)
            continue;
        ++counted;
        const Team* before = counted > 1 ? &found[i - 1] : nullptr;
        team.position = before && total(*before, rules) == total(team, rules) &&
                                lastPlace(*before) == lastPlace(team)
                            ? before->position
                            : counted;
    }
    return found;
}

QList<Runner> withoutSex(const QList<Runner>& runners)
{
    QList<Runner> left;
    for (const Runner& r : runners)
        if (!r.team.simplified().isEmpty() && sexes::of(r.sexo) == Sex::None)
            left << r;
    return left;
}

QString withoutSexMessage(const QList<Runner>& runners)
{
    const QList<Runner> left = withoutSex(runners);
    if (left.isEmpty())
        return QString();
    QStringList names;
    for (const Runner& r : left)
        names << QStringLiteral("%1 (dorsal %2, %3)")
                     .arg(runnerName(r))
                     .arg(r.bib)
                     .arg(r.sexo.trimmed().isEmpty()
                              ? QStringLiteral("sin sexo")
                              : QStringLiteral("sexo «%1»").arg(r.sexo.trimmed()));
    return QStringLiteral("Fuera de la clasificación por equipos por sexo, sin un sexo "
                          "reconocible (M, H, F, Hombre, Mujer, Masculino, Femenino): %1.")
        .arg(names.join(QStringLiteral("; ")));
}

QList<resultsreport::Table> tables(const QList<Team>& teams, const Rules& rules, int fractionDigits)
{
    using resultsreport::Column;
    using resultsreport::Place;
    QList<resultsreport::Table> made;
    for (qsizetype i = 0; i < teams.size(); ++i) {
        const Team& team = teams[i];
        if (i == 0 || teams[i - 1].sex != team.sex) {
            resultsreport::Table t;
            t.title = QStringLiteral("Clasificación por equipos");
            t.label = QStringLiteral("Equipos");
            if (!team.sex.isEmpty()) {
                t.title += QStringLiteral(" · ") + team.sex;
                t.label += QStringLiteral(" · ") + team.sex;
            }
            t.header = {QStringLiteral("Puesto"), QStringLiteral("Equipo"),
                        rules.score == Rules::Score::Time ? QStringLiteral("Tiempo")
                                                          : QStringLiteral("Puntos"),
                        QStringLiteral("Corredores")};
            t.columns = {Column::Number, Column::WideText, Column::Number, Column::WideText};
            t.places = {Place::Main, Place::Main, Place::Main, Place::Detail};
            made << t;
        }
        made.last().rows << QStringList{
            team.position > 0 ? QString::number(team.position) : QString(),
            team.complete ? team.name : QStringLiteral("%1 (incompleto)").arg(team.name),
            totalText(team, rules, fractionDigits), runnerList(team.scorers)};
    }
    return made;
}

QByteArray csv(const QList<Team>& teams, const Rules& rules, int fractionDigits)
{
    QStringList header{QStringLiteral("Puesto"), QStringLiteral("Equipo")};
    if (rules.bySex)
        header << QStringLiteral("Sexo");
    header << (rules.score == Rules::Score::Time ? QStringLiteral("Tiempo")
                                                 : QStringLiteral("Puntos"))
           << QStringLiteral("Puntúan") << QStringLiteral("Otros corredores")
           << QStringLiteral("Observaciones");
    QList<QStringList> rows{header};
    for (const Team& team : teams) {
        QStringList cells{team.position > 0 ? QString::number(team.position) : QString(),
                          team.name};
        if (rules.bySex)
            cells << team.sex;
        cells << totalText(team, rules, fractionDigits) << runnerList(team.scorers)
              << runnerList(team.others)
              << (team.complete ? QString()
                                : QStringLiteral("Incompleto: %1 de %2")
                                      .arg(team.scorers.size())
                                      .arg(rules.scorers));
        rows << cells;
    }
    return plaintext::csv(rows);
}

} // namespace teams
